// SPDX-License-Identifier: MIT
#include "settings/window/readings/live_reading.hpp"

#include <QPainter>
#include <algorithm>
#include <utility>

#include "settings/toolkit/color_scheme.hpp"
#include "settings/window/readings/accessible_roles.hpp"

namespace vantora {
namespace {

constexpr float faintOpacity = 0.6F;
constexpr int gap = 8;  // between the label and the text, in points

}  // namespace

LiveReading::LiveReading(int characters, int labelWidth)
    : characters_(characters), labelWidth_(labelWidth) {
  AccessibleRoles::install();
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
}

void LiveReading::show(Content content) {
  if (content == content_) {
    return;
  }
  const bool looksTheSame = content.label == content_.label && content.text == content_.text &&
                            content.isFaint == content_.isFaint &&
                            content.isStrong == content_.isStrong;
  content_ = std::move(content);
  setAccessibleName(content_.spoken);
  setAccessibleDescription(content_.details);
  setToolTip(content_.details);
  if (!looksTheSame) {
    update();
  }
}

QSize LiveReading::sizeHint() const {
  const int text = fontMetrics().horizontalAdvance(QLatin1Char('0')) * characters_;
  return {(labelWidth_ > 0 ? labelWidth_ + gap : 0) + text, fontMetrics().height() + 2};
}

QSize LiveReading::minimumSizeHint() const {
  return {sizeHint().width() / 2, sizeHint().height()};
}

void LiveReading::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  QColor ink = palette().color(QPalette::WindowText);
  QColor faint = ink;
  faint.setAlphaF(looksHighContrast() ? 1 : faintOpacity);
  QRect place = rect();
  const auto draw = [&](const QRect& within, const QString& text, const QColor& color) {
    painter.setPen(color);
    painter.drawText(within, Qt::AlignVCenter | Qt::AlignLeading | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(text, Qt::ElideRight, within.width()));
  };
  if (labelWidth_ > 0) {
    const int width = std::min(labelWidth_, place.width() * 2 / 3);
    draw({place.left(), place.top(), width, place.height()}, content_.label,
         content_.isFaint ? faint : ink);
    place.setLeft(place.left() + width + gap);
  }
  if (content_.isStrong && !content_.isFaint) {
    QFont strong = font();
    strong.setBold(true);
    painter.setFont(strong);
  }
  draw(place, content_.text, content_.isStrong && !content_.isFaint ? ink : faint);
}

}  // namespace vantora
