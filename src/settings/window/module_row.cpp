// SPDX-License-Identifier: MIT
#include "settings/window/module_row.hpp"

#include <QGraphicsOpacityEffect>
#include <QPushButton>
#include <QStyle>
#include <algorithm>

#include "model/metric.hpp"

namespace vantora {
namespace {

using M = ModuleConfiguration;

constexpr SwitchField<M> enabledField = {"Ati&vo", &Access<&M::enabled>::get,
                                         &Access<&M::enabled>::set};
constexpr SwitchField<M> hideFansField = {
    "&Ocultar na barra quando paradas ou sem leitura",
    [](const M& module) { return module.hideInactiveFans.value_or(true); },
    [](M& module, bool isHiding) { module.hideInactiveFans = isHiding; }};

template <auto Member>
constexpr NumberField<M> points(std::string_view label, Limits limits) {
  return {label, limits, &Access<Member>::get, &Access<Member>::set};
}
constexpr auto widthField = points<&M::width>("&Largura", ConfigurationLimits::width);
constexpr auto fontTopField = points<&M::fontTop>("&Fonte L1", ConfigurationLimits::font);
constexpr auto fontBottomField = points<&M::fontBottom>("Fo&nte L2", ConfigurationLimits::font);

template <auto Member>
ChoiceField<M> metricField(std::string_view label) {
  ChoiceField<M> field{label, {}, &Access<Member>::getChoice, &Access<Member>::setChoice};
  for (const MetricID metric : allMetrics) {
    field.options.push_back({title(metric), static_cast<int>(metric)});
  }
  return field;
}

const ChoiceField<M>& widthModeField() {
  static const ChoiceField<M> field = {"Modo da largura",
                                       {{"Fixa", static_cast<int>(WidthMode::fixed)},
                                        {"Automática", static_cast<int>(WidthMode::automatic)}},
                                       &Access<&M::widthMode>::getChoice,
                                       &Access<&M::widthMode>::setChoice};
  return field;
}

const ChoiceField<M>& alignmentField() {
  static const ChoiceField<M> field = {"Alin&hamento",
                                       {{"Esquerda", static_cast<int>(Alignment::left)},
                                        {"Centro", static_cast<int>(Alignment::center)},
                                        {"Direita", static_cast<int>(Alignment::right)}},
                                       &Access<&M::alignment>::getChoice,
                                       &Access<&M::alignment>::setChoice};
  return field;
}

constexpr std::string_view ownGapLabel = "&Espaço próprio";

QWidget* sideBySide(std::initializer_list<QWidget*> widgets) {
  auto* row = new QWidget;
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* widget : widgets) {
    layout->addWidget(widget);
  }
  return row;
}

}  // namespace

ModuleRow::ModuleRow(WindowModel& model, const UUID& id)
    : model_(model),
      id_(id),
      form_([this](const std::function<void(M&)>& change) { edit(change); }),
      handle_(new DragHandle),
      header_(new QHBoxLayout) {
  setFrameShape(QFrame::StyledPanel);
  auto* column = new QVBoxLayout(this);
  handle_->setAccessibleName(qtText("Mover"));
  header_->addWidget(named(handle_));
  header_->addWidget(named(form_.add(enabledField)));
  header_->addStretch();
  auto* duplicate = Controls::makeButton("&Duplicar", [this] { model_.duplicateModule(id_); });
  auto* remove = Controls::makeButton("&Remover", [this] { model_.removeModule(UUID(id_)); });

  QWidget* content = makeContentHalf();
  QWidget* shape = makeShapeHalf();
  // The lines of the two halves at the same heights, though a picker is higher than a stepper.
  for (const auto& [control, own] : named_) {
    if (control->parentWidget() == nullptr || control->parentWidget() == content ||
        control->parentWidget() == shape) {
      control->setMinimumHeight(firstPicker_->sizeHint().height());
    }
  }
  halves_ = new QBoxLayout(QBoxLayout::LeftToRight);
  halves_->setSpacing(2 * column->spacing());
  halves_->addWidget(content, 1);
  halves_->addWidget(shape);

  column->addLayout(header_);
  column->addLayout(halves_);
  hideFans_ = named(form_.add(hideFansField));
  column->addWidget(hideFans_);
  header_->addWidget(named(duplicate));
  header_->addWidget(named(remove));
}

QWidget* ModuleRow::makeContentHalf() {
  auto* half = new QWidget;
  QFormLayout* rows = Controls::makeForm();
  rows->setContentsMargins(0, 0, 0, 0);
  const ChoiceField<M> top = metricField<&M::top>("Linha &1 (L1)");
  const ChoiceField<M> bottom = metricField<&M::bottom>("Linha &2 (L2)");
  firstPicker_ = named(form_.add(top));
  Controls::addRow(rows, top.label, firstPicker_);
  Controls::addRow(rows, bottom.label, named(form_.add(bottom)));
  QComboBox* mode = named(form_.add(widthModeField()));
  QSpinBox* width = named(form_.add(widthField));
  QWidget* controls = sideBySide({mode, width});
  Controls::addRow(rows, widthField.label, controls);
  // The accelerator leads to the number.
  static_cast<QLabel*>(rows->labelForField(controls))->setBuddy(width);
  half->setLayout(rows);
  return half;
}

QWidget* ModuleRow::makeShapeHalf() {
  auto* half = new QWidget;
  QFormLayout* rows = Controls::makeForm();
  rows->setContentsMargins(0, 0, 0, 0);
  Controls::addRow(rows, fontTopField.label, named(form_.add(fontTopField)));
  Controls::addRow(rows, fontBottomField.label, named(form_.add(fontBottomField)));
  Controls::addRow(rows, alignmentField().label, named(form_.add(alignmentField())));
  hasOwnGap_ = new QCheckBox(qtText(ownGapLabel));
  hasOwnGap_->setAccessibleName(spokenName(ownGapLabel));
  ownGap_ = Controls::makeSpinBox(ConfigurationLimits::gap, qtText("Espaço próprio em pontos"));
  rows->addRow(named(hasOwnGap_), named(ownGap_));
  // An own gap begins as the one that it takes the place of.
  QObject::connect(hasOwnGap_, &QCheckBox::toggled, this, [this](bool isOn) {
    const double gap = model_.state().configuration.gap;
    edit([&](M& module) { module.gapAfter = isOn ? std::optional(gap) : std::nullopt; });
  });
  QObject::connect(ownGap_, &QSpinBox::valueChanged, this,
                   [this](int value) { edit([&](M& module) { module.gapAfter = value; }); });
  half->setLayout(rows);
  return half;
}

void ModuleRow::edit(const std::function<void(M&)>& change) {
  AppConfiguration next = model_.state().configuration;
  const auto found = std::find_if(next.modules.begin(), next.modules.end(),
                                  [this](const M& module) { return module.id == id_; });
  if (found != next.modules.end()) {
    change(*found);
    model_.setConfiguration(std::move(next));
  }
}

void ModuleRow::load(const AppConfiguration& configuration, std::size_t index) {
  const M& module = configuration.modules[index];
  form_.load(module);
  {
    const QSignalBlocker quietBox(hasOwnGap_);
    const QSignalBlocker quietSpin(ownGap_);
    hasOwnGap_->setChecked(module.gapAfter.has_value());
    ownGap_->setEnabled(module.gapAfter.has_value());
    const int gap = static_cast<int>(std::lround(module.gapAfter.value_or(configuration.gap)));
    if (ownGap_->value() != gap) {
      ownGap_->setValue(gap);
    }
  }
  hideFans_->setVisible(isFan(module.top) || isFan(module.bottom));
  nameAfterModule(module, index);
}

void ModuleRow::nameAfterModule(const M& module, std::size_t index) {
  const MetricID shown = module.top != MetricID::none ? module.top : module.bottom;
  const QString name = QStringLiteral("módulo %1 (%2)").arg(index + 1).arg(qtText(title(shown)));
  setAccessibleName(name);
  for (const auto& [control, own] : named_) {
    const QString full = own + QStringLiteral(", ") + name;
    if (control->accessibleName() != full) {
      Controls::setSpokenName(control, full);
    }
  }
}

QList<QWidget*> ModuleRow::controls() const {
  QList<QWidget*> controls;
  for (const auto& [control, own] : named_) {
    controls.append(control);
  }
  return controls;
}

void ModuleRow::focusFirstPicker() {
  firstPicker_->setFocus(Qt::ShortcutFocusReason);  // With its ring shown.
}

void ModuleRow::setLifted(bool isLifted) {
  if (isLifted == (graphicsEffect() != nullptr)) {
    return;
  }
  if (isLifted) {
    auto* faint = new QGraphicsOpacityEffect;
    faint->setOpacity(0.45);
    setGraphicsEffect(faint);
  } else {
    setGraphicsEffect(nullptr);
  }
}

// As narrow as the halves below each other allow: resizeEvent() puts them so.
QSize ModuleRow::minimumSizeHint() const {
  int width = header_->minimumSize().width();
  for (int index = 0; index < halves_->count(); ++index) {
    width = std::max(width, halves_->itemAt(index)->minimumSize().width());
  }
  if (!hideFans_->isHidden()) {
    width = std::max(width, hideFansWidth(hideFansNarrowText()));
  }
  return {width + sideMargins(), QFrame::minimumSizeHint().height()};
}

void ModuleRow::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  const int available = width() - sideMargins();
  int sideBySideWidth = halves_->spacing() * (halves_->count() - 1);
  for (int index = 0; index < halves_->count(); ++index) {
    sideBySideWidth += halves_->itemAt(index)->sizeHint().width();
  }
  const auto direction =
      available < sideBySideWidth ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight;
  if (halves_->direction() != direction) {
    halves_->setDirection(direction);
    updateGeometry();
  }
  const QString wide = qtText(hideFansField.label);
  hideFans_->setText(hideFansWidth(wide) <= available ? wide : hideFansNarrowText());
}

int ModuleRow::sideMargins() const {
  const QMargins margins = layout()->contentsMargins();
  return margins.left() + margins.right() + 2 * frameWidth();
}

// On two lines.
QString ModuleRow::hideFansNarrowText() {
  return qtText(hideFansField.label).replace(qtText(" quando"), qtText("\nquando"));
}

int ModuleRow::hideFansWidth(const QString& text) const {
  return fontMetrics().size(Qt::TextShowMnemonic, text).width() +
         style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, hideFans_) +
         2 * style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, hideFans_);
}

}  // namespace vantora
