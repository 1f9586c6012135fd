// SPDX-License-Identifier: MIT
#include "settings/toolkit/color_scheme.hpp"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <cstdlib>

namespace vantora {
namespace {

QPalette darkPalette() {
  const QColor window(0x2b, 0x2c, 0x2e);
  const QColor base(0x1c, 0x1d, 0x1f);
  const QColor button(0x31, 0x33, 0x36);
  const QColor text(0xee, 0xee, 0xec);
  const QColor highlight(0x35, 0x84, 0xe4);
  QPalette palette(text, button, QColor(0x4c, 0x4f, 0x52), QColor(0x18, 0x19, 0x1a),
                   QColor(0x3a, 0x3c, 0x3e), text, Qt::white, base, window);
  palette.setColor(QPalette::Highlight, highlight);
  palette.setColor(QPalette::HighlightedText, Qt::white);
  palette.setColor(QPalette::Link, QColor(0x78, 0xae, 0xed));
  palette.setColor(QPalette::AlternateBase, button);
  palette.setColor(QPalette::ToolTipBase, button);
  palette.setColor(QPalette::ToolTipText, text);
  palette.setColor(QPalette::PlaceholderText, QColor(0xee, 0xee, 0xec, 0x80));
  const QColor faint(0x8b, 0x8d, 0x8f);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, faint);
  }
  return palette;
}

QPalette highContrastPalette(bool isDark) {
  const QColor ground = isDark ? Qt::black : Qt::white;
  const QColor ink = isDark ? Qt::white : Qt::black;
  const QColor half = isDark ? QColor(0xb0, 0xb0, 0xb0) : QColor(0x50, 0x50, 0x50);
  QPalette palette(ink, ground, half, half, half, ink, ink, ground, ground);
  palette.setColor(QPalette::Highlight, isDark ? QColor(0xff, 0xe0, 0x00) : QColor(0, 0, 0x90));
  palette.setColor(QPalette::HighlightedText, ground);
  palette.setColor(QPalette::Link, isDark ? QColor(0x8c, 0xc8, 0xff) : QColor(0, 0, 0x90));
  palette.setColor(QPalette::AlternateBase, ground);
  palette.setColor(QPalette::ToolTipBase, ground);
  palette.setColor(QPalette::ToolTipText, ink);
  palette.setColor(QPalette::PlaceholderText, half);
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    palette.setColor(QPalette::Disabled, role, half);
  }
  return palette;
}

QPalette paletteOf(Colors colors) {
  if (colors.isHighContrast) {
    return highContrastPalette(colors.isDark);
  }
  return colors.isDark ? darkPalette() : QApplication::style()->standardPalette();
}

}  // namespace

Colors colorsOfTheme(std::string_view name) {
  const bool isHighContrast = name.starts_with("HighContrast") || name.starts_with("ContrastHigh");
  return {isHighContrast && name.ends_with("Inverse"), isHighContrast};
}

bool looksDark() {
  const QPalette palette = QApplication::palette();
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

bool looksHighContrast() {
  const QPalette palette = QApplication::palette();
  const int ground = palette.color(QPalette::Window).lightness();
  const int ink = palette.color(QPalette::WindowText).lightness();
  return std::abs(ground - ink) == 255;
}

void useColors(Colors colors) {
  const QPalette wanted = paletteOf(colors);
  if (QApplication::palette() != wanted) {
    QApplication::setPalette(wanted);
  }
}

}  // namespace vantora
