// SPDX-License-Identifier: MIT
#include "settings/window/controls/flow_layout.hpp"

#include <QWidget>
#include <algorithm>

namespace vantora {

FlowLayout::FlowLayout(int spacing) {
  setContentsMargins(0, 0, 0, 0);
  setSpacing(spacing);
}

FlowLayout::~FlowLayout() {
  qDeleteAll(items_);
}

QLayoutItem* FlowLayout::takeAt(int index) {
  return index >= 0 && index < items_.size() ? items_.takeAt(index) : nullptr;
}

int FlowLayout::heightForWidth(int width) const {
  return arrange(QRect(0, 0, width, 0), false);
}

QSize FlowLayout::sizeHint() const {
  int width = 0;
  int height = 0;
  for (const QLayoutItem* item : items_) {
    width += (width > 0 ? spacing() : 0) + item->sizeHint().width();
    height = std::max(height, item->sizeHint().height());
  }
  return {width, height};
}

QSize FlowLayout::minimumSize() const {
  QSize size;
  for (const QLayoutItem* item : items_) {
    size = size.expandedTo(item->minimumSize());
  }
  return size;
}

void FlowLayout::setGeometry(const QRect& rect) {
  QLayout::setGeometry(rect);
  arrange(rect, true);
}

int FlowLayout::arrange(const QRect& rect, bool isPlacing) const {
  const bool isLeftToRight =
      parentWidget() == nullptr || parentWidget()->layoutDirection() == Qt::LeftToRight;
  int x = 0;
  int y = 0;
  int lineHeight = 0;
  for (QLayoutItem* item : items_) {
    if (item->isEmpty()) {
      continue;
    }
    const QSize size = item->sizeHint();
    if (x > 0 && x + size.width() > rect.width()) {
      x = 0;
      y += lineHeight + spacing();
      lineHeight = 0;
    }
    if (isPlacing) {
      const int left = isLeftToRight ? rect.x() + x : rect.right() + 1 - x - size.width();
      item->setGeometry({QPoint(left, rect.y() + y), size});
    }
    x += size.width() + spacing();
    lineHeight = std::max(lineHeight, size.height());
  }
  return y + lineHeight;
}

}  // namespace vantora
