// SPDX-License-Identifier: MIT
#include "settings/window/readings/status_preview.hpp"

#include <QFrame>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <cstring>

#include "settings/window/controls/qt_text.hpp"
#include "settings/window/readings/accessible_roles.hpp"

namespace vantora {
namespace {

// Around the picture, in points: what the bar leaves above, below and beside it.
constexpr int margin = 6;
constexpr int maxBarHeight = 36;

QImage inkOf(const std::vector<std::uint8_t>& alpha, int columns, int rows, double scale) {
  QImage ink(columns, rows, QImage::Format_Alpha8);
  const auto bytes = static_cast<std::size_t>(columns);
  for (int row = 0; row < rows; ++row) {
    std::memcpy(ink.scanLine(row), alpha.data() + static_cast<std::size_t>(row) * bytes, bytes);
  }
  ink.setDevicePixelRatio(scale);
  return ink;
}

// Something like a panel: a shade apart from the window's ground.
class BarStrip final : public QScrollArea {
 public:
  BarStrip() { paint(); }

 protected:
  void changeEvent(QEvent* event) override {
    QScrollArea::changeEvent(event);
    if (event->type() == QEvent::PaletteChange) {
      paint();
    }
  }

 private:
  void paint() {
    const QColor ground = palette().color(QPalette::Window);
    constexpr int darkLightness = 128;
    QPalette colors = viewport()->palette();
    const QColor shade =
        ground.lightness() < darkLightness ? ground.darker(160) : ground.darker(112);
    if (colors.color(QPalette::Window) != shade) {
      colors.setColor(QPalette::Window, shade);
      viewport()->setPalette(colors);
    }
    viewport()->setBackgroundRole(QPalette::Window);
    viewport()->setAutoFillBackground(true);
  }
};

}  // namespace

QString previewCaption(bool isPaused) {
  return qtText(isPaused ? "Coleta pausada"
                         : "Prévia com leituras ativas; — significa indisponível ou aguardando "
                           "amostra.");
}

StatusPreview::StatusPreview(int magnification) : magnification_(magnification) {
  AccessibleRoles::install();
  setAccessibleName(qtText("Prévia do bloco na barra"));
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setMouseTracking(true);
}

void StatusPreview::show(const StatusPicture& picture) {
  setAccessibleDescription(qtText(picture.spoken));
  QImage ink = magnification_ > 1 && picture.enlarged
                   ? inkOf(picture.enlarged->alpha, picture.enlarged->columns,
                           picture.enlarged->rows, picture.enlarged->scale)
                   : inkOf(picture.alpha, picture.columns, picture.rows, picture.scale);
  if (ink == ink_ && blocks_ == picture.blocks) {
    return;
  }
  const QSize before = sizeHint();
  ink_ = std::move(ink);
  blocks_ = picture.blocks;
  if (sizeHint() != before) {
    updateGeometry();
    resize(sizeHint());
  }
  update();
}

QWidget* StatusPreview::inScrollArea() {
  auto* area = new BarStrip;
  area->setWidget(this);
  area->setAlignment(Qt::AlignCenter);
  area->setFrameShape(QFrame::StyledPanel);
  area->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  area->setFocusPolicy(Qt::NoFocus);
  setAutoFillBackground(false);
  // High enough for the tallest bar with a scroll bar below the picture.
  const int height = magnification_ > 1 ? 24 * magnification_ : maxBarHeight;
  area->setFixedHeight(2 * area->frameWidth() + height + 2 * margin +
                       area->horizontalScrollBar()->sizeHint().height());
  return area;
}

QSize StatusPreview::sizeHint() const {
  const QSizeF points = ink_.isNull() ? QSizeF() : ink_.deviceIndependentSize() * magnification_;
  return {static_cast<int>(std::ceil(points.width())) + 2 * margin,
          static_cast<int>(std::ceil(points.height())) + 2 * margin};
}

bool StatusPreview::event(QEvent* event) {
  if (event->type() == QEvent::ToolTip && describe) {
    const auto* help = static_cast<const QHelpEvent*>(event);
    const PictureBlock* block = blockAt(help->pos());
    if (block != nullptr) {
      QToolTip::showText(help->globalPos(), describe(block->id), this, placeOf(*block));
    } else {
      QToolTip::hideText();
    }
    return true;
  }
  return QWidget::event(event);
}

void StatusPreview::mouseMoveEvent(QMouseEvent* event) {
  const PictureBlock* block = blockAt(event->position().toPoint());
  point(block != nullptr ? std::optional(block->id) : std::nullopt);
}

void StatusPreview::mouseReleaseEvent(QMouseEvent* event) {
  const PictureBlock* block = blockAt(event->position().toPoint());
  if (onBlock && block != nullptr && event->button() == Qt::LeftButton) {
    onBlock(UUID(block->id));
  }
}

void StatusPreview::leaveEvent(QEvent* event) {
  point(std::nullopt);
  QWidget::leaveEvent(event);
}

void StatusPreview::point(std::optional<UUID> module) {
  if (!onBlock || pointed_ == module) {
    return;
  }
  pointed_ = module;
  setCursor(module ? Qt::PointingHandCursor : Qt::ArrowCursor);
  update();
}

QRect StatusPreview::placeOf(const PictureBlock& block) const {
  return {margin + static_cast<int>(std::floor(block.left * magnification_)), 0,
          static_cast<int>(std::ceil(block.width * magnification_)), height()};
}

const PictureBlock* StatusPreview::blockAt(QPoint position) const {
  const auto found = std::find_if(blocks_.begin(), blocks_.end(), [&](const PictureBlock& block) {
    return placeOf(block).contains(position);
  });
  return found != blocks_.end() ? &*found : nullptr;
}

void StatusPreview::paintEvent(QPaintEvent* /*event*/) {
  if (ink_.isNull()) {
    return;
  }
  QPainter painter(this);
  const QColor textColor = palette().color(QPalette::WindowText);
  for (const PictureBlock& block : blocks_) {
    if (pointed_ == block.id) {
      QColor ground = textColor;
      ground.setAlphaF(0.12F);
      painter.setRenderHint(QPainter::Antialiasing);
      painter.setPen(Qt::NoPen);
      painter.setBrush(ground);
      painter.drawRoundedRect(placeOf(block).adjusted(-2, 2, 2, -2), 4, 4);
    }
  }
  QImage tinted(ink_.size(), QImage::Format_ARGB32_Premultiplied);
  tinted.fill(textColor);
  {
    QPainter tint(&tinted);
    tint.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    QImage plain = ink_;
    plain.setDevicePixelRatio(1);
    tint.drawImage(0, 0, plain);
  }
  tinted.setDevicePixelRatio(ink_.devicePixelRatio());
  painter.setRenderHint(QPainter::SmoothPixmapTransform, magnification_ > 1);
  const QSizeF size = ink_.deviceIndependentSize() * magnification_;
  painter.drawImage(QRectF(QPointF(margin, margin), size), tinted, tinted.rect());
}

}  // namespace vantora
