// SPDX-License-Identifier: MIT
#include <QByteArray>
#include <QtGlobal>

#include "settings/window/desktop_dialogs.hpp"

namespace vantora {

void useDesktopDialogs() {
  // Qt's theme over the desktop portal (org.freedesktop.portal.FileChooser). For everything
  // else it asks the theme that Qt would have taken; where its plug-in is not installed, or
  // no service answers for the portal, everything is as without it.
  constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";
  if (!qEnvironmentVariableIsSet(themeVariable)) {
    qputenv(themeVariable, "xdgdesktopportal");
  }
}

}  // namespace vantora
