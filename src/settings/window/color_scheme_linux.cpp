// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QDBusConnection>
#include <QPalette>
#include <QStyle>

#include "settings/window/color_scheme.hpp"
#include "settings/window/color_scheme_portal.hpp"

namespace vantora {

void followColorScheme() {
  // Where the platform's theme brings the desktop's colours it changes them, too. Qt 6.4
  // alone does not look at the portal.
  if (QApplication::palette() != QApplication::style()->standardPalette()) {
    return;
  }
  new ColorSchemePortal(QDBusConnection::sessionBus(), useDarkColors, qApp);
}

}  // namespace vantora
