// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSettings>
#include <QString>

#include "settings/window/native_window.hpp"

namespace vantora {

/// What the window remembers from one opening to the next: its place and size, the tab and
/// the folder of the file dialogs. No part of the configuration: a matter of this screen.
class WindowMemory {
 public:
  /// In the user's folder for configurations, beside the configuration.
  WindowMemory() : WindowMemory(windowMemoryFile()) {}
  explicit WindowMemory(const QString& file) : settings_(file, QSettings::IniFormat) {}

  [[nodiscard]] QByteArray geometry() const {
    return settings_.value(QStringLiteral("geometry")).toByteArray();
  }
  void setGeometry(const QByteArray& geometry) {
    settings_.setValue(QStringLiteral("geometry"), geometry);
  }
  [[nodiscard]] int tab() const { return settings_.value(QStringLiteral("tab")).toInt(); }
  void setTab(int tab) { settings_.setValue(QStringLiteral("tab"), tab); }
  [[nodiscard]] QString folder() const {
    return settings_.value(QStringLiteral("folder")).toString();
  }
  void setFolder(const QString& folder) { settings_.setValue(QStringLiteral("folder"), folder); }

 private:
  QSettings settings_;
};

}  // namespace vantora
