// SPDX-License-Identifier: MIT
#pragma once

#include <QProxyStyle>

namespace vantora {

/// The toolkit's own style with outlines that can be seen: boxes that are not checked in every
/// palette (at least 3:1 against their ground, WCAG 2.1 criterion 1.4.11), and in one of high
/// contrast every control.
class OutliningStyle final : public QProxyStyle {
 public:
  OutliningStyle();

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
  void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                   const QWidget* widget) const override;
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                          QPainter* painter, const QWidget* widget) const override;
};

/// Uses it where the toolkit's own style is in use: a desktop's style draws its own outlines.
/// Once, with the application just made.
void useOutlines();

}  // namespace vantora
