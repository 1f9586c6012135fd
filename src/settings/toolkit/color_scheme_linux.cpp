// SPDX-License-Identifier: MIT
#include <QApplication>
#include <QDBusConnection>
#include <QPalette>
#include <QStyle>
#include <memory>

#include "settings/toolkit/appearance_setting.hpp"
#include "settings/toolkit/color_scheme.hpp"

namespace vantora {

void followColorScheme() {
  // Where the platform's theme brings the desktop's colours it changes them, too. Qt 6.4
  // alone does not look at the portal.
  if (QApplication::palette() != QApplication::style()->standardPalette()) {
    return;
  }
  const auto colors = std::make_shared<Colors>();
  const QDBusConnection bus = QDBusConnection::sessionBus();
  new AppearanceSetting(
      bus, AppearanceSetting::colorScheme,
      [colors](uint scheme) {
        colors->isDark = scheme == 1;
        useColors(*colors);
      },
      qApp);
  new AppearanceSetting(
      bus, AppearanceSetting::contrast,
      [colors](uint contrast) {
        colors->isHighContrast = contrast == 1;
        useColors(*colors);
      },
      qApp);
}

}  // namespace vantora
