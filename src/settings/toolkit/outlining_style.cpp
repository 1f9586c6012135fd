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

void outline(const QStyleOption& option, QPainter* painter, float opacity) {
  QColor ink = option.palette.color(QPalette::Text);
  ink.setAlphaF(opacity);
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, false);
  painter->setPen(ink);
  painter->setBrush(Qt::NoBrush);
  painter->drawRect(option.rect.adjusted(0, 0, -1, -1));
  painter->restore();
}

}  // namespace

OutliningStyle::OutliningStyle() : QProxyStyle(QStringLiteral("fusion")) {}

void OutliningStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                                   QPainter* painter, const QWidget* widget) const {
  QProxyStyle::drawPrimitive(element, option, painter, widget);
  switch (element) {
    case PE_IndicatorCheckBox:
      outline(*option, painter, looksHighContrast() ? 1 : outlineOpacity);
      break;
    case PE_PanelButtonCommand:
    case PE_FrameLineEdit:
    case PE_Frame:
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
