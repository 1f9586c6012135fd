// SPDX-License-Identifier: MIT
#include "settings/window/status_preview.hpp"

#include <QFrame>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyle>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "settings/window/qt_text.hpp"

namespace vantora {
namespace {

// Around the picture, in points: what the bar leaves above, below and beside it.
constexpr int margin = 6;

}  // namespace

StatusPreview::StatusPreview() {
  setAccessibleName(qtText("Prévia do bloco na barra"));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void StatusPreview::show(const StatusPicture& picture) {
  QImage ink(picture.columns, picture.rows, QImage::Format_Alpha8);
  for (int row = 0; row < picture.rows; ++row) {
    std::memcpy(ink.scanLine(row),
                picture.alpha.data() +
                    static_cast<std::size_t>(row) * static_cast<std::size_t>(picture.columns),
                static_cast<std::size_t>(picture.columns));
  }
  ink.setDevicePixelRatio(picture.scale);
  const QSize before = sizeHint();
  ink_ = std::move(ink);
  if (sizeHint() != before) {
    updateGeometry();
    resize(sizeHint());
  }
  update();
}

QWidget* StatusPreview::inScrollArea() {
  auto* area = new QScrollArea;
  area->setWidget(this);
  area->setAlignment(Qt::AlignCenter);
  area->setFrameShape(QFrame::StyledPanel);
  area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  // High enough for the tallest bar with a scroll bar below the picture.
  area->setFixedHeight(2 * area->frameWidth() + 36 + 2 * margin +
                       area->horizontalScrollBar()->sizeHint().height());
  return area;
}

QSize StatusPreview::sizeHint() const {
  const QSizeF points = ink_.isNull() ? QSizeF() : ink_.deviceIndependentSize();
  return {static_cast<int>(std::ceil(points.width())) + 2 * margin,
          static_cast<int>(std::ceil(points.height())) + 2 * margin};
}

void StatusPreview::paintEvent(QPaintEvent* /*event*/) {
  if (ink_.isNull()) {
    return;
  }
  QImage tinted(ink_.size(), QImage::Format_ARGB32_Premultiplied);
  tinted.fill(palette().color(QPalette::WindowText));
  {
    QPainter tint(&tinted);
    tint.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    QImage plain = ink_;
    plain.setDevicePixelRatio(1);
    tint.drawImage(0, 0, plain);
  }
  tinted.setDevicePixelRatio(ink_.devicePixelRatio());
  QPainter(this).drawImage(margin, margin, tinted);
}

}  // namespace vantora
