// SPDX-License-Identifier: MIT
#include <QStandardPaths>
#include <QWidget>

#include "settings/window/native_window.hpp"

namespace vantora {

// On macOS the Application Support folder.
QString windowMemoryFile() {
  return QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation) +
         QStringLiteral("/Vantora/settings-window.ini");
}

// On macOS the agent has yielded to this program, but the system activates no application
// for a window alone.
void bringToFront(QWidget& window) {
  window.raise();
  window.activateWindow();
}

}  // namespace vantora
