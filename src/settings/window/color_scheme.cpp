// SPDX-License-Identifier: MIT
#include "settings/window/color_scheme.hpp"

#include <QApplication>
#include <QPalette>
#include <QStyle>

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

}  // namespace

bool looksDark() {
  const QPalette palette = QApplication::palette();
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

void useDarkColors(bool isDark) {
  const QPalette wanted = isDark ? darkPalette() : QApplication::style()->standardPalette();
  if (QApplication::palette() != wanted) {
    QApplication::setPalette(wanted);
  }
}

}  // namespace vantora
