// SPDX-License-Identifier: MIT
#include "settings/window/modules/module_editor.hpp"

#include <QStyle>
#include <algorithm>
#include <utility>

#include "settings/window/modules/metric_picker.hpp"

namespace vantora {
namespace {

using M = ModuleConfiguration;

// Room for "— Bateria interna indisponível".
constexpr int readingCharacters = 23;

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

// Widgets beside each other, with nothing around them.
QBoxLayout* beside(std::initializer_list<QWidget*> widgets) {
  auto* row = new QWidget;
  auto* layout = new QBoxLayout(QBoxLayout::LeftToRight, row);
  layout->setContentsMargins(0, 0, 0, 0);
  for (QWidget* widget : widgets) {
    layout->addWidget(widget);
  }
  return layout;
}

// Of a picker that cuts no title.
int wholePickerWidth(const QFontMetrics& metrics) {
  int widest = 0;
  for (const MetricID metric : allMetrics) {
    widest = std::max(widest, metrics.horizontalAdvance(qtText(title(metric))));
  }
  return widest + 2 * metrics.height();  // its frame and its arrow
}

bool shows(const M& module, MetricFamily wanted) {
  return family(module.top) == wanted || family(module.bottom) == wanted;
}

}  // namespace

ModuleEditor::ModuleEditor(WindowModel& model, const UUID& id, Edit edit)
    : model_(model),
      id_(id),
      edit_(std::move(edit)),
      form_(edit_),
      topReading_(new LiveReading(readingCharacters)),
      bottomReading_(new LiveReading(readingCharacters)) {
  auto* column = new QVBoxLayout(this);
  column->setContentsMargins(0, 0, 0, 0);
  column->addWidget(makeQuotaNote());
  column->addWidget(makeLines());
  halves_ = beside({makeWidthHalf(), makeFontHalf()});
  halves_->setSpacing(2 * column->spacing());
  column->addWidget(halves_->parentWidget());

  hideFans_ = named_.add(form_.add(hideFansField));
  visibility_ = Controls::makeText();
  auto* fans = new QBoxLayout(QBoxLayout::TopToBottom);
  fans->setContentsMargins(0, 0, 0, 0);
  fans->addWidget(hideFans_);
  fans->addWidget(visibility_);
  fans_ = new QWidget;
  fans_->setLayout(fans);
  column->addWidget(fans_);

  duplicate_ = Controls::makeButton("&Duplicar", [this] { model_.duplicateModule(UUID(id_)); });
  auto* remove = Controls::makeButton("&Remover", [this] { model_.removeModule(UUID(id_)); });
  column->addWidget(Controls::makeButtonRow({named_.add(duplicate_), named_.add(remove)}));
}

QWidget* ModuleEditor::makeLines() {
  auto* lines = new QWidget;
  QFormLayout* rows = Controls::makeForm();
  rows->setContentsMargins(0, 0, 0, 0);
  const ChoiceField<M> fields[] = {metricField<&M::top>("Linha &1 (L1)"),
                                   metricField<&M::bottom>("Linha &2 (L2)")};
  QComboBox** pickers[] = {&top_, &bottom_};
  LiveReading* readings[] = {topReading_, bottomReading_};
  for (std::size_t index = 0; index < 2; ++index) {
    QComboBox* picker = named_.add(form_.add(fields[index]));
    *pickers[index] = picker;
    MetricPicker::dress(picker);
    lines_[index] = beside({picker, readings[index]});
    lines_[index]->setStretch(0, 3);
    lines_[index]->setStretch(1, 2);
    QWidget* line = lines_[index]->parentWidget();
    Controls::addRow(rows, fields[index].label, line);
    static_cast<QLabel*>(rows->labelForField(line))->setBuddy(picker);
  }
  lines->setLayout(rows);
  return lines;
}

QWidget* ModuleEditor::makeWidthHalf() {
  auto* half = new QWidget;
  QFormLayout* rows = Controls::makeForm();
  rows->setContentsMargins(0, 0, 0, 0);
  QComboBox* mode = named_.add(form_.add(widthModeField()));
  QSpinBox* width = named_.add(form_.add(widthField));
  QWidget* controls = beside({mode, width})->parentWidget();
  Controls::addRow(rows, widthField.label, controls);
  // The accelerator leads to the number.
  static_cast<QLabel*>(rows->labelForField(controls))->setBuddy(width);
  Controls::addRow(rows, alignmentField().label, named_.add(form_.add(alignmentField())));
  half->setLayout(rows);
  return half;
}

QWidget* ModuleEditor::makeFontHalf() {
  auto* half = new QWidget;
  QFormLayout* rows = Controls::makeForm();
  rows->setContentsMargins(0, 0, 0, 0);
  auto* fonts =
      beside({named_.add(form_.add(fontTopField)), new QLabel(qtText(fontBottomField.label)),
              named_.add(form_.add(fontBottomField))});
  static_cast<QLabel*>(fonts->itemAt(1)->widget())->setBuddy(fonts->itemAt(2)->widget());
  fonts->addStretch();
  Controls::addRow(rows, fontTopField.label, fonts->parentWidget());
  static_cast<QLabel*>(rows->labelForField(fonts->parentWidget()))
      ->setBuddy(fonts->itemAt(0)->widget());
  hasOwnGap_ = new QCheckBox(qtText(ownGapLabel));
  hasOwnGap_->setAccessibleName(spokenName(ownGapLabel));
  ownGap_ = Controls::makeSpinBox(ConfigurationLimits::gap, qtText("Espaço próprio em pontos"));
  auto* gap = beside({named_.add(hasOwnGap_), named_.add(ownGap_)});
  gap->addStretch();
  rows->addRow(gap->parentWidget());
  // An own gap begins as the one that it takes the place of.
  QObject::connect(hasOwnGap_, &QCheckBox::toggled, this, [this](bool isOn) {
    const double own = model_.state().configuration.gap;
    edit_([&](M& module) { module.gapAfter = isOn ? std::optional(own) : std::nullopt; });
  });
  QObject::connect(ownGap_, &QSpinBox::valueChanged, this,
                   [this](int value) { edit_([&](M& module) { module.gapAfter = value; }); });
  half->setLayout(rows);
  return half;
}

QWidget* ModuleEditor::makeQuotaNote() {
  quota_ = new QWidget;
  auto* row = new QVBoxLayout(quota_);
  row->setContentsMargins(0, 0, 0, 0);
  quotaText_ = Controls::makeText();
  row->addWidget(quotaText_);
  quotaButton_ = Controls::makeButton("", [this] {
    if (onQuotaTab) {
      onQuotaTab(quotaFamily_);
    }
  });
  row->addWidget(Controls::makeButtonRow({quotaButton_}));
  quota_->hide();
  return quota_;
}

void ModuleEditor::load(const AppConfiguration& configuration, const M& module,
                        const QString& name) {
  form_.load(module);
  {
    const QSignalBlocker quietBox(hasOwnGap_);
    const QSignalBlocker quietSpin(ownGap_);
    hasOwnGap_->setChecked(module.gapAfter.has_value());
    ownGap_->setEnabled(module.gapAfter.has_value());
    const QString why = module.gapAfter ? QString()
                                        : qtText(
                                              "Marque \"Espaço próprio\" para mudar; sem ele "
                                              "vale o espaço entre módulos da aba Aparência.");
    ownGap_->setToolTip(why);
    ownGap_->setAccessibleDescription(why);
    const int gap = static_cast<int>(std::lround(module.gapAfter.value_or(configuration.gap)));
    if (ownGap_->value() != gap) {
      ownGap_->setValue(gap);
    }
  }
  fans_->setVisible(isFan(module.top) || isFan(module.bottom));
  showQuotaNote(configuration, module);
  const bool isFull = configuration.modules.size() >= ConfigurationLimits::modules;
  Controls::setUsable(duplicate_, !isFull, tooManyModulesText);
  named_.nameAfter(name);
  quotaButton_->setAccessibleName(quotaButton_->text().remove(QLatin1Char('&')) +
                                  QStringLiteral(", ") + name);
}

void ModuleEditor::showQuotaNote(const AppConfiguration& configuration, const M& module) {
  const bool isCodexOff = shows(module, MetricFamily::codex) &&
                          !(configuration.codexSettings && configuration.codexSettings->enabled);
  const bool isClaudeOff = shows(module, MetricFamily::claude) &&
                           !(configuration.claudeSettings && configuration.claudeSettings->enabled);
  quota_->setVisible(isCodexOff || isClaudeOff);
  if (isCodexOff) {
    quotaFamily_ = MetricFamily::codex;
    quotaText_->setText(qtText("A integração Codex está desativada: o módulo mostra só OFF."));
    quotaButton_->setText(qtText("Abrir a aba Codex semanal"));
  } else if (isClaudeOff) {
    quotaFamily_ = MetricFamily::claude;
    quotaText_->setText(qtText("A integração Claude está desativada: o módulo mostra só OFF."));
    quotaButton_->setText(qtText("Abrir a aba Claude"));
  }
}

void ModuleEditor::showReadings(const LiveReading::Content& top, const LiveReading::Content& bottom,
                                MetricSet missing) {
  topReading_->show(top);
  bottomReading_->show(bottom);
  MetricPicker::mark(top_, missing);
  MetricPicker::mark(bottom_, missing);
}

void ModuleEditor::showVisibility(const QString& text) {
  if (visibility_->text() != text) {
    visibility_->setText(text);
  }
}

void ModuleEditor::focusFirstPicker() {
  top_->setFocus(Qt::ShortcutFocusReason);  // With its ring shown.
}

// As narrow as everything below each other allows: resizeEvent() puts it so.
QSize ModuleEditor::minimumSizeHint() const {
  int width = 0;
  for (int index = 0; index < halves_->count(); ++index) {
    width = std::max(width, halves_->itemAt(index)->minimumSize().width());
  }
  width = std::max(width, top_->minimumSizeHint().width());
  if (!fans_->isHidden()) {
    width = std::max(width, hideFansWidth(hideFansNarrowText()));
  }
  return {width, QWidget::minimumSizeHint().height()};
}

void ModuleEditor::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  const int available = width();
  const auto turn = [this](QBoxLayout* layout, bool isWide) {
    const auto direction = isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
    if (layout->direction() != direction) {
      layout->setDirection(direction);
      updateGeometry();
    }
  };
  int sideBySideWidth = halves_->spacing() * (halves_->count() - 1);
  for (int index = 0; index < halves_->count(); ++index) {
    sideBySideWidth += halves_->itemAt(index)->sizeHint().width();
  }
  turn(halves_, available >= sideBySideWidth);
  const int lineWidth =
      wholePickerWidth(fontMetrics()) + lines_[0]->spacing() + topReading_->sizeHint().width();
  for (QBoxLayout* line : lines_) {
    turn(line, available >= lineWidth);
  }
  const QString wide = qtText(hideFansField.label);
  hideFans_->setText(hideFansWidth(wide) <= available ? wide : hideFansNarrowText());
}

// On two lines.
QString ModuleEditor::hideFansNarrowText() {
  return qtText(hideFansField.label).replace(qtText(" quando"), qtText("\nquando"));
}

int ModuleEditor::hideFansWidth(const QString& text) const {
  return fontMetrics().size(Qt::TextShowMnemonic, text).width() +
         style()->pixelMetric(QStyle::PM_IndicatorWidth, nullptr, hideFans_) +
         2 * style()->pixelMetric(QStyle::PM_CheckBoxLabelSpacing, nullptr, hideFans_);
}

}  // namespace vantora
