// SPDX-License-Identifier: MIT
#include <QSettings>

#include "settings/window/native_window.hpp"

namespace vantora {

QString windowMemoryFile() {
  return QSettings(QSettings::IniFormat, QSettings::UserScope, QStringLiteral("Vantora"),
                   QStringLiteral("settings-window"))
      .fileName();
}

// A window comes to the front as it is shown, by the desktop's token for the click.
void bringToFront(QWidget&) {}

}  // namespace vantora
