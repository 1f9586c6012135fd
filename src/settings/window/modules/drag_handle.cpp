// SPDX-License-Identifier: MIT
#include "settings/window/modules/drag_handle.hpp"

#include <QApplication>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOption>
#include <QStylePainter>

#include "settings/window/controls/qt_text.hpp"

namespace vantora {

DragHandle::DragHandle() {
  setAutoRaise(true);
  setFocusPolicy(Qt::StrongFocus);
  setCursor(Qt::OpenHandCursor);
  setToolTip(qtText("Arraste para ordenar, ou use ↑ e ↓"));
  // The button's own, so that assistive tools find it below the button.
  auto* menu = new QMenu(this);
  const std::pair<const char*, Step> entries[] = {{"Mover para &cima", Step::up},
                                                  {"Mover para &baixo", Step::down},
                                                  {"Mover para o &início", Step::first},
                                                  {"Mover para o &fim", Step::last}};
  for (const auto& [text, wanted] : entries) {
    menu->addAction(qtText(text), this, [this, wanted = wanted] { step(wanted); });
  }
  setMenu(menu);
  // Reached by a click without a mouse: the space bar or an assistive tool.
  QObject::connect(this, &QToolButton::clicked, this, [this] { openMenu(); });
}

void DragHandle::setPlace(bool isFirst, bool isLast) {
  const QList<QAction*> entries = menu()->actions();
  for (const Step wanted : {Step::up, Step::down, Step::first, Step::last}) {
    const bool isUpwards = wanted == Step::up || wanted == Step::first;
    entries[static_cast<int>(wanted)]->setEnabled(isUpwards ? !isFirst : !isLast);
  }
}

void DragHandle::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    pressed_ = event->position().toPoint();
    setFocus(Qt::MouseFocusReason);
  }
}

void DragHandle::mouseMoveEvent(QMouseEvent* event) {
  if (!pressed_) {
    return;
  }
  const int distance = (event->position().toPoint() - *pressed_).manhattanLength();
  if (!isDragging_ && distance >= QApplication::startDragDistance()) {
    isDragging_ = true;
    setCursor(Qt::ClosedHandCursor);
  }
  if (isDragging_ && onDrag) {
    onDrag(event->globalPosition().toPoint());
  }
}

void DragHandle::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton || !pressed_) {
    return;
  }
  pressed_.reset();
  if (isDragging_) {
    drop(false);
  } else {
    openMenu();
  }
}

void DragHandle::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
      if (!isDragging_) {
        break;
      }
      pressed_.reset();
      drop(true);
      return;
    case Qt::Key_Up:
      return step(Step::up);
    case Qt::Key_Down:
      return step(Step::down);
    case Qt::Key_Home:
      return step(Step::first);
    case Qt::Key_End:
      return step(Step::last);
    default:
      break;
  }
  QToolButton::keyPressEvent(event);
}

void DragHandle::paintEvent(QPaintEvent* /*event*/) {
  QStylePainter painter(this);
  QStyleOptionToolButton option;
  initStyleOption(&option);
  option.features &= ~QStyleOptionToolButton::HasMenu;  // No arrow: it is dragged first of all.
  painter.drawComplexControl(QStyle::CC_ToolButton, option);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  QColor ink = palette().color(QPalette::ButtonText);
  ink.setAlphaF(0.7F);
  painter.setBrush(ink);
  const qreal step = height() / 4.5;
  const QPointF middle = QRectF(rect()).center();
  for (int row = -1; row <= 1; ++row) {
    for (const qreal side : {-0.5, 0.5}) {
      painter.drawEllipse(middle + QPointF(side * step, row * step), step / 4.0, step / 4.0);
    }
  }
}

QSize DragHandle::sizeHint() const {
  const int side = fontMetrics().height() + 6;
  return {side, side};
}

void DragHandle::step(Step step) const {
  if (onStep) {
    onStep(step);
  }
}

void DragHandle::drop(bool isCancelled) {
  isDragging_ = false;
  setCursor(Qt::OpenHandCursor);
  if (onDrop) {
    onDrop(isCancelled);
  }
}

void DragHandle::openMenu() {
  menu()->popup(mapToGlobal(QPoint(0, height())));
}

}  // namespace vantora
