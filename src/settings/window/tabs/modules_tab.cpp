// SPDX-License-Identifier: MIT
#include "settings/window/tabs/modules_tab.hpp"

#include <QCoreApplication>
#include <QScrollBar>
#include <QShortcut>
#include <algorithm>

#include "settings/window/readings/reading_text.hpp"

namespace vantora {

// Goes on scrolling while something is dragged over the list's edge.
class ModulesTab::RepeatingScrollBar final : public QScrollBar {
 public:
  explicit RepeatingScrollBar(QWidget* parent) : QScrollBar(Qt::Vertical, parent) {}
  void repeat(SliderAction action) {
    if (repeatAction() != action) {
      setRepeatAction(action, 100, 30);
    }
  }
};

ModulesTab::ModulesTab(WindowModel& model)
    : SettingsTab(model),
      preview_(new StatusPreview(2)),
      caption_(Controls::makeNote("")),
      area_(new QScrollArea),
      scrollBar_(new RepeatingScrollBar(area_)),
      list_(new QWidget),
      layout_(new QVBoxLayout(list_)),
      empty_(Controls::makeText(
          qtText("Nenhum módulo: a barra mostra só a marca do Vantora. Adicione um abaixo."))),
      dropLine_(new QFrame(list_)) {
  // All of it scrolls where the window is too low for a useful list.
  QVBoxLayout* column = Controls::makeScrollingColumn(this);
  column->addWidget(Controls::makeHeading("Ordem, conteúdo e largura do bloco"));
  addPreview(column);
  addList(column);
  addButtons(column);
}

void ModulesTab::addPreview(QVBoxLayout* column) {
  preview_->describe = [this](const UUID& id) { return describe(id); };
  preview_->onBlock = [this](const UUID& id) { goTo(id); };
  column->addWidget(preview_->inScrollArea());
  caption_->setText(previewCaption(false));
  column->addWidget(caption_);
}

void ModulesTab::addList(QVBoxLayout* column) {
  area_->setVerticalScrollBar(scrollBar_);
  area_->setWidgetResizable(true);
  area_->setWidget(list_);
  area_->setMinimumHeight(fontMetrics().height() * 8);
  // The rows have the page's own background.
  area_->viewport()->setAutoFillBackground(false);
  list_->setAutoFillBackground(false);
  area_->setFocusPolicy(Qt::NoFocus);
  list_->setAccessibleName(qtText("Módulos"));
  layout_->setSpacing(layout_->spacing() / 2);
  layout_->addWidget(empty_);
  layout_->addStretch();
  column->addWidget(area_, 1);
  dropLine_->setObjectName(QStringLiteral("dropLine"));
  dropLine_->setAutoFillBackground(true);
  dropLine_->setBackgroundRole(QPalette::Highlight);
  dropLine_->hide();
  QObject::connect(scrollBar_, &QScrollBar::valueChanged, this, [this] { showDropPlace(); });
}

void ModulesTab::addButtons(QVBoxLayout* column) {
  column->addWidget(Controls::makeNote("Arraste os módulos para ordenar."));
  auto* add = Controls::makeButton("&Adicionar módulo", [this] { this->model().addModule(); });
  auto* addCodex =
      Controls::makeButton("Adicionar &Codex semanal", [this] { this->model().addCodexModule(); });
  auto* addClaude =
      Controls::makeButton("Adic&ionar Claude", [this] { this->model().addClaudeModule(); });
  column->addWidget(Controls::makeButtonRow({add, addCodex, addClaude}));
  addButtons_ = {add, addCodex, addClaude};
}

void ModulesTab::refresh(WindowFields fields) {
  if (fields.contains(WindowField::configuration)) {
    showModules();
    caption_->setText(previewCaption(state().configuration.paused));
  }
  if (fields.contains(WindowField::picture)) {
    preview_->show(state().picture);
  }
  if (fields.intersects(
          {WindowField::configuration, WindowField::picture, WindowField::readings})) {
    showReadings();
  }
  if (fields.contains(WindowField::pendingScrollID)) {
    scrollToPending();
  }
}

void ModulesTab::showReadings() {
  for (const MetricReading& reading : state().readings) {
    if (ReadingText::isMissing(reading)) {
      missing_.insert(reading.metric);
    } else {
      missing_.erase(reading.metric);
    }
  }
  for (ModuleRow* row : rows_) {
    row->showReadings(state(), missing_);
  }
}

// One row is open at a time.
void ModulesTab::opened(ModuleRow* row) {
  for (ModuleRow* other : rows_) {
    if (other != row) {
      other->setOpen(false);
    }
  }
  joinTabOrder();
  bringIntoView(row);
}

void ModulesTab::goTo(const UUID& id) {
  if (ModuleRow* row = rowOf(id)) {
    row->setOpen(true);
    row->focusLine();
    bringIntoView(row);
  }
}

QString ModulesTab::describe(const UUID& id) const {
  const auto& modules = state().configuration.modules;
  const auto found = std::find_if(modules.begin(), modules.end(),
                                  [&](const auto& module) { return module.id == id; });
  if (found == modules.end()) {
    return {};
  }
  QString text = ReadingText::moduleName(*found);
  for (const MetricID metric : {found->top, found->bottom}) {
    if (const MetricReading* reading = ReadingText::find(state().readings, metric)) {
      text += QStringLiteral("\n") + qtText(title(metric)) + QStringLiteral(": ") +
              ReadingText::line(*reading);
    }
  }
  return text;
}

void ModulesTab::showEvent(QShowEvent* event) {
  SettingsTab::showEvent(event);
  scrollToPending();
}

// Rows stay with their modules, so that focus, an open list and the place in the list stay
// where they are.
void ModulesTab::showModules() {
  const AppConfiguration& configuration = state().configuration;
  const auto& modules = configuration.modules;
  for (ModuleRow* row : rows_) {
    const bool isGone = std::none_of(modules.begin(), modules.end(),
                                     [&](const auto& module) { return module.id == row->id(); });
    if (isGone) {
      if (row == dragged_) {
        endDrag();
      }
      row->hide();
      layout_->removeWidget(row);
      row->deleteLater();  // It may be one of its buttons that asks.
    }
  }
  std::vector<ModuleRow*> rows;
  for (std::size_t index = 0; index < modules.size(); ++index) {
    ModuleRow* row = rowOf(modules[index].id);
    if (row == nullptr) {
      row = makeRow(modules[index].id);
    }
    row->load(configuration, index);
    if (layout_->indexOf(row) != static_cast<int>(index)) {
      layout_->removeWidget(row);
      layout_->insertWidget(static_cast<int>(index), row);
      row->show();  // A layout would show it later, and place it only then.
    }
    rows.push_back(row);
  }
  const bool isReordered = rows != rows_;
  rows_ = std::move(rows);
  empty_->setVisible(rows_.empty());
  const bool isFull = rows_.size() >= ConfigurationLimits::modules;
  for (QPushButton* button : addButtons_) {
    Controls::setUsable(button, !isFull, tooManyModulesText);
  }
  if (isReordered) {
    // The order among the children is the order that assistive tools find.
    for (ModuleRow* row : rows_) {
      row->raise();
    }
    joinTabOrder();
  }
}

// Tab goes through the rows in their order and then to the buttons below.
void ModulesTab::joinTabOrder() const {
  QWidget* previous = nullptr;
  const auto join = [&previous](QWidget* next) {
    if (previous != nullptr) {
      QWidget::setTabOrder(previous, next);
    }
    previous = next;
  };
  for (const ModuleRow* row : rows_) {
    for (QWidget* control : row->controls()) {
      join(control);
    }
  }
  for (QWidget* button : addButtons_) {
    join(button);
  }
}

ModuleRow* ModulesTab::makeRow(const UUID& id) {
  auto* row = new ModuleRow(model(), id);
  row->onOpen = [this, row](bool isOpen) {
    if (isOpen) {
      opened(row);
    }
  };
  row->onQuotaTab = [this](MetricFamily wanted) {
    if (onQuotaTab) {
      onQuotaTab(wanted);
    }
  };
  DragHandle& handle = row->handle();
  handle.onStep = [this, row](DragHandle::Step step) { move(row, step); };
  handle.onDrag = [this, row](QPoint position) { drag(row, position); };
  handle.onDrop = [this, row](bool isCancelled) { drop(row, isCancelled); };
  // From any of the row's controls.
  const std::pair<Qt::Key, DragHandle::Step> keys[] = {{Qt::Key_Up, DragHandle::Step::up},
                                                       {Qt::Key_Down, DragHandle::Step::down}};
  for (const auto& [key, step] : keys) {
    auto* shortcut = new QShortcut(QKeySequence(Qt::CTRL | Qt::SHIFT | key), row);
    shortcut->setContext(Qt::WidgetWithChildrenShortcut);
    QObject::connect(shortcut, &QShortcut::activated, row,
                     [this, row, step = step] { move(row, step); });
  }
  return row;
}

ModuleRow* ModulesTab::rowOf(const UUID& id) const {
  const auto found = std::find_if(rows_.begin(), rows_.end(),
                                  [&](const ModuleRow* row) { return row->id() == id; });
  return found != rows_.end() ? *found : nullptr;
}

std::size_t ModulesTab::placeOf(const ModuleRow* row) const {
  return static_cast<std::size_t>(std::find(rows_.begin(), rows_.end(), row) - rows_.begin());
}

void ModulesTab::scrollToPending() {
  const auto& pending = state().pendingScrollID;
  ModuleRow* row = pending ? rowOf(*pending) : nullptr;
  if (row == nullptr || !isVisible()) {
    return;
  }
  row->focusFirstPicker();
  bringIntoView(row);
  model().scrolled();
}

void ModulesTab::bringIntoView(ModuleRow* row) {
  // A row has its place only once the list is laid out.
  QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
  // Of a row that is higher than the list, the upper part.
  const int visible = std::min(row->height(), area_->viewport()->height());
  area_->ensureVisible(row->x(), row->y() + visible, 0, layout_->spacing());
  area_->ensureVisible(row->x(), row->y(), 0, layout_->spacing());
}

void ModulesTab::move(ModuleRow* row, DragHandle::Step step) {
  const std::size_t place = placeOf(row);
  const std::size_t wanted = [&]() -> std::size_t {
    switch (step) {
      case DragHandle::Step::up:
        return place > 0 ? place - 1 : 0;
      case DragHandle::Step::down:
        return place + 1;
      case DragHandle::Step::first:
        return 0;
      case DragHandle::Step::last:
        return rows_.size();
    }
    return place;
  }();
  QWidget* focused = focusWidget();
  model().moveModule(UUID(row->id()), wanted);
  bringIntoView(row);
  if (focused != nullptr) {
    focused->setFocus(Qt::OtherFocusReason);
  }
}

void ModulesTab::drag(ModuleRow* row, QPoint globalPosition) {
  if (placeOf(row) == rows_.size()) {
    return;  // The module went meanwhile.
  }
  row->setLifted(true);
  dragged_ = row;
  dragPosition_ = globalPosition;
  const int y = area_->viewport()->mapFromGlobal(globalPosition).y();
  const int edge = fontMetrics().height() * 2;
  scrollBar_->repeat(y < edge                                 ? QScrollBar::SliderSingleStepSub
                     : y > area_->viewport()->height() - edge ? QScrollBar::SliderSingleStepAdd
                                                              : QScrollBar::SliderNoAction);
  showDropPlace();
}

void ModulesTab::drop(ModuleRow* row, bool isCancelled) {
  if (row != dragged_) {
    return;
  }
  endDrag();
  const std::size_t place = placeOf(row);
  if (!isCancelled && dropPlace_ != place && dropPlace_ != place + 1) {
    model().moveModule(UUID(row->id()), dropPlace_ > place ? dropPlace_ - 1 : dropPlace_);
  }
}

void ModulesTab::endDrag() {
  if (dragged_ == nullptr) {
    return;
  }
  dragged_->setLifted(false);
  dragged_ = nullptr;
  scrollBar_->repeat(QScrollBar::SliderNoAction);
  dropLine_->hide();
}

void ModulesTab::showDropPlace() {
  if (dragged_ == nullptr) {
    return;
  }
  const int y = list_->mapFromGlobal(dragPosition_).y();
  dropPlace_ =
      static_cast<std::size_t>(std::count_if(rows_.begin(), rows_.end(), [y](const ModuleRow* row) {
        return row->geometry().center().y() < y;
      }));
  const int thickness = 3;
  const int above = dropPlace_ > 0 ? rows_[dropPlace_ - 1]->geometry().bottom() + 1 : 0;
  const int below =
      dropPlace_ < rows_.size() ? rows_[dropPlace_]->geometry().top() : above + layout_->spacing();
  dropLine_->setGeometry(rows_.front()->x(), (above + below - thickness) / 2,
                         rows_.front()->width(), thickness);
  dropLine_->raise();
  dropLine_->show();
}

}  // namespace vantora
