// SPDX-License-Identifier: MIT
#include "settings/toolkit/outlining_style.hpp"

#include <QApplication>
#include <QPainter>
#include <QStyleOption>

#include "settings/toolkit/color_scheme.hpp"

namespace vantora {
namespace {

// How much of the text's colour an outline has: 3:1 on light and on dark grounds.
constexpr float outlineOpacity = 0.62F;

// One point wide on every side: as areas the sides are there at fractional scales as well, where
// lines along the edge fall out of the widget.
void frame(const QRect& rect, QPainter* painter, const QColor& ink) {
  const QRect inner = rect.adjusted(1, 1, -1, -1);
  for (const QRect& side : {QRect(rect.left(), rect.top(), rect.width(), 1),
                            QRect(rect.left(), inner.bottom() + 1, rect.width(), 1),
                            QRect(rect.left(), inner.top(), 1, inner.height()),
                            QRect(inner.right() + 1, inner.top(), 1, inner.height())}) {
    painter->fillRect(side, ink);
  }
}

void outline(const QStyleOption& option, QPainter* painter, float opacity) {
  QColor ink = option.palette.color(QPalette::Text);
  ink.setAlphaF(opacity);
  frame(option.rect, painter, ink);
}

}  // namespace

OutliningStyle::OutliningStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void OutliningStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const {
  if (element == PE_Frame) {
    // As the style does it, on all four sides.
    const QColor usual = option->palette.color(QPalette::Window).darker(130);
    frame(option->rect, painter,
          looksHighContrast() ? option->palette.color(QPalette::Text) : usual);
    return;
  }
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  switch (element) {
    case PE_IndicatorCheckBox:
      outline(*option, painter, looksHighContrast() ? 1 : outlineOpacity);
      break;
    case PE_PanelButtonCommand:
    case PE_FrameLineEdit:
    case PE_FrameTabWidget:
      if (looksHighContrast()) {
        outline(*option, painter, 1);
      }
      break;
    default:
      break;
  }
}

void OutliningStyle::drawControl(ControlElement element, const QStyleOption* option,
                                 QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawControl(element, option, painter, widget);
  if (element == CE_TabBarTabShape && looksHighContrast()) {
    const bool isSelected = (option->state & State_Selected) != 0;
    outline(*option, painter, isSelected ? 1 : outlineOpacity);
  }
}

void OutliningStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                        QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawComplexControl(control, option, painter, widget);
  if ((control == CC_ComboBox || control == CC_SpinBox) && looksHighContrast()) {
    outline(*option, painter, 1);
  }
}

void useOutlines() {
  if (QApplication::style()->name() == QStringLiteral("fusion")) {
    QApplication::setStyle(new OutliningStyle);
  }
}

}  // namespace vantora
