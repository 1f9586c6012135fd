// SPDX-License-Identifier: MIT
#include "settings/window/modules/module_row.hpp"

#include <QGraphicsOpacityEffect>
#include <QMouseEvent>
#include <QStyle>
#include <algorithm>

#include "model/metric.hpp"
#include "settings/window/readings/reading_text.hpp"
#include "status/metric_formatter.hpp"

namespace vantora {
namespace {

using M = ModuleConfiguration;

constexpr int valueCharacters = 8;  // Room for the widest text of the bar, in bold.

constexpr SwitchField<M> enabledField = {"Ati&vo", &Access<&M::enabled>::get,
                                         &Access<&M::enabled>::set};

// The column of the names is as wide in every row.
int nameWidth(const QFontMetrics& metrics) {
  int width = 0;
  for (const MetricID metric : allMetrics) {
    width = std::max(width, metrics.horizontalAdvance(ReadingText::shortName(metric)));
  }
  return width;
}

LiveReading* makeCell() {
  const QFontMetrics metrics{QFont()};
  return new LiveReading(valueCharacters, nameWidth(metrics));
}

constexpr const char* hiddenMark = "oculto";
constexpr const char* hiddenFans = "Oculto na barra agora: ventoinhas paradas ou sem leitura.";
constexpr const char* hiddenLines = "Oculto na barra: as duas linhas estão vazias.";
constexpr const char* shownText = "Visível na barra agora.";
constexpr const char* inactiveText = "Inativo: não aparece na barra.";

}  // namespace

ModuleRow::ModuleRow(WindowModel& model, const UUID& id)
    : model_(model),
      id_(id),
      form_([this](const std::function<void(M&)>& change) { edit(change); }),
      handle_(new DragHandle),
      line_(new QHBoxLayout),
      cells_(new QBoxLayout(QBoxLayout::LeftToRight)),
      top_(makeCell()),
      bottom_(makeCell()),
      hidden_(new LiveReading(6)),
      open_(new QToolButton) {
  setFrameShape(QFrame::StyledPanel);
  auto* column = new QVBoxLayout(this);
  const int margin = style()->pixelMetric(QStyle::PM_LayoutTopMargin, nullptr, this) / 2;
  column->setContentsMargins(margin, margin, margin, margin);
  handle_->setAccessibleName(qtText("Mover"));
  line_->addWidget(named_.add(handle_));
  line_->addWidget(named_.add(form_.add(enabledField)));
  cells_->addWidget(top_, 1);
  cells_->addWidget(bottom_, 1);
  line_->addLayout(cells_, 1);
  // Its place stays when it goes, so that nothing moves.
  QSizePolicy keepsItsPlace(QSizePolicy::Fixed, QSizePolicy::Fixed);
  keepsItsPlace.setRetainSizeWhenHidden(true);
  hidden_->setSizePolicy(keepsItsPlace);
  hidden_->hide();
  line_->addWidget(hidden_);
  open_->setAutoRaise(true);
  open_->setArrowType(Qt::RightArrow);
  open_->setAccessibleName(qtText("Editar"));
  open_->setToolTip(qtText("Editar"));
  open_->setFocusPolicy(Qt::StrongFocus);
  line_->addWidget(named_.add(open_));
  column->addLayout(line_);
  QObject::connect(open_, &QToolButton::clicked, this, [this] { setOpen(!isOpen_); });
}

// The editor is made when it is first needed: most rows of a long list are never open.
void ModuleRow::unfold() {
  const QString action = qtText(isOpen_ ? "Recolher" : "Editar");
  open_->setArrowType(isOpen_ ? Qt::DownArrow : Qt::RightArrow);
  open_->setToolTip(action);
  named_.rename(open_, action);
  if (isOpen_ && editor_ == nullptr) {
    editor_ = new ModuleEditor(model_, id_,
                               [this](const std::function<void(M&)>& change) { edit(change); });
    editor_->onQuotaTab = [this](MetricFamily wanted) {
      if (onQuotaTab) {
        onQuotaTab(wanted);
      }
    };
    static_cast<QVBoxLayout*>(layout())->addWidget(editor_);
    showReadings();
  }
  nameAfterModule();
  if (editor_ != nullptr) {
    editor_->setVisible(isOpen_);
  }
  updateGeometry();
}

void ModuleRow::setOpen(bool isOpen) {
  if (isOpen == isOpen_) {
    return;
  }
  isOpen_ = isOpen;
  unfold();
  if (onOpen) {
    onOpen(isOpen);
  }
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
  module_ = configuration.modules[index];
  index_ = index;
  form_.load(module_);
  handle_->setPlace(index == 0, index + 1 == configuration.modules.size());
  nameAfterModule();
}

void ModuleRow::nameAfterModule() {
  const MetricID shown = module_.top != MetricID::none ? module_.top : module_.bottom;
  const QString name = QStringLiteral("módulo %1 (%2)").arg(index_ + 1).arg(qtText(title(shown)));
  setAccessibleName(name);
  named_.nameAfter(name);
  if (editor_ != nullptr) {
    editor_->load(model_.state().configuration, module_, name);
  }
}

void ModuleRow::showReadings(const WindowState& state, MetricSet missing) {
  state_ = &state;
  missing_ = missing;
  showReadings();
}

void ModuleRow::showReadings() {
  if (state_ == nullptr) {
    return;
  }
  top_->show(content(module_.top, true, "L1"));
  bottom_->show(content(module_.bottom, true, "L2"));
  const auto& blocks = state_->picture.blocks;
  const bool isShown = std::any_of(blocks.begin(), blocks.end(),
                                   [this](const PictureBlock& block) { return block.id == id_; });
  const bool isEmpty = module_.top == MetricID::none && module_.bottom == MetricID::none;
  const char* why = !module_.enabled ? inactiveText
                    : isShown        ? shownText
                    : isEmpty        ? hiddenLines
                                     : hiddenFans;
  const bool isHidden = module_.enabled && !isShown;
  const QString mark = isHidden ? qtText(hiddenMark) : QString();
  hidden_->show({{}, mark, isHidden ? qtText(why) : QString(), isHidden ? qtText(why) : QString()});
  hidden_->setVisible(isHidden);
  setAccessibleDescription(isShown && module_.enabled ? QString() : qtText(why));
  if (editor_ != nullptr) {
    editor_->showReadings(content(module_.top, false, "L1"), content(module_.bottom, false, "L2"),
                          missing_);
    editor_->showVisibility(qtText(why));
  }
}

LiveReading::Content ModuleRow::content(MetricID metric, bool isInLine, const char* line) const {
  LiveReading::Content content;
  content.isFaint = !module_.enabled;
  content.label = isInLine ? ReadingText::shortName(metric) : QString();
  const QString name = isInLine ? qtText(title(metric)) : qtText(line);
  const MetricReading* reading =
      module_.enabled ? ReadingText::find(state_->readings, metric) : nullptr;
  if (reading == nullptr) {
    content.details = module_.enabled ? QString() : qtText(inactiveText);
    content.text = !isInLine && !module_.enabled ? content.details : QString();
    content.spoken = content.text.isEmpty() ? name : name + QStringLiteral(": ") + content.text;
    return content;
  }
  // What only has to come, or is not measured now, is no news in every line of the list.
  const bool isAwaited = reading->quality == Quality::waiting || reading->quality == Quality::stale;
  content.text = isInLine && isAwaited ? qtText(reading->text) : ReadingText::line(*reading);
  content.isStrong = MetricFormatter::isReading(reading->text) && reading->reason.empty();
  content.spoken = name + QStringLiteral(": ") + ReadingText::line(*reading);
  content.details =
      (isInLine ? name + QStringLiteral(": ") : QString()) + ReadingText::details(*reading);
  return content;
}

QList<QWidget*> ModuleRow::controls() const {
  return named_.list() + (editor_ != nullptr ? editor_->controls() : QList<QWidget*>());
}

void ModuleRow::focusFirstPicker() {
  setOpen(true);
  editor_->focusFirstPicker();
}

void ModuleRow::focusLine() {
  open_->setFocus(Qt::ShortcutFocusReason);
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

// The whole line unfolds the row, not only its button.
void ModuleRow::mouseReleaseEvent(QMouseEvent* event) {
  const bool isInLine =
      line_->geometry().adjusted(0, -4, 0, 4).contains(event->position().toPoint());
  if (event->button() == Qt::LeftButton && isInLine) {
    setOpen(!isOpen_);
  }
}

int ModuleRow::lineWidth(QBoxLayout::Direction direction) const {
  const bool isWide = direction == QBoxLayout::LeftToRight;
  const int cell = isWide ? top_->sizeHint().width() : top_->minimumSizeHint().width();
  const int cells = isWide ? 2 * cell + cells_->spacing() : cell;
  int width = cells + line_->spacing() * (line_->count() - 1);
  for (int index = 0; index < line_->count(); ++index) {
    if (QWidget* widget = line_->itemAt(index)->widget()) {
      width += widget->sizeHint().width();
    }
  }
  return width;
}

QSize ModuleRow::minimumSizeHint() const {
  int width = lineWidth(QBoxLayout::TopToBottom);
  if (isOpen() && editor_ != nullptr) {
    width = std::max(width, editor_->minimumSizeHint().width());
  }
  return {width + sideMargins(), QFrame::minimumSizeHint().height()};
}

void ModuleRow::resizeEvent(QResizeEvent* event) {
  QFrame::resizeEvent(event);
  const bool isWide = width() - sideMargins() >= lineWidth(QBoxLayout::LeftToRight);
  const auto direction = isWide ? QBoxLayout::LeftToRight : QBoxLayout::TopToBottom;
  if (cells_->direction() != direction) {
    cells_->setDirection(direction);
    updateGeometry();
  }
}

int ModuleRow::sideMargins() const {
  const QMargins margins = layout()->contentsMargins();
  return margins.left() + margins.right() + 2 * frameWidth();
}

}  // namespace vantora
