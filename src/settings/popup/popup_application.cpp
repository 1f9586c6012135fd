// SPDX-License-Identifier: MIT
#include "settings/popup/popup_application.hpp"

#include <unistd.h>

#include <QToolTip>

#include "settings/toolkit/color_scheme.hpp"

namespace vantora {
namespace {

// Before the toolkit starts. A session that is saved is not to start it again.
int& leaveSession(int& argc) {
  qunsetenv("SESSION_MANAGER");
  return argc;
}

}  // namespace

PopupApplication::PopupApplication(int& argc, char** argv)
    : application_(leaveSession(argc), argv), connection_(STDIN_FILENO, STDOUT_FILENO) {
  QApplication::setApplicationName(QStringLiteral("vantora-settings"));
  QApplication::setApplicationDisplayName(QStringLiteral("Vantora"));
  QApplication::setQuitOnLastWindowClosed(false);
  for (const Qt::UIEffect effect :
       {Qt::UI_AnimateMenu, Qt::UI_FadeMenu, Qt::UI_AnimateTooltip, Qt::UI_FadeTooltip}) {
    QApplication::setEffectEnabled(effect, false);
  }
  connection_.onEnd = [] { QApplication::quit(); };
}

void useDesktopColors(bool isDark) {
  if (isDark && !looksDark()) {
    useDarkColors(true);
    QToolTip::setPalette(QApplication::palette());
  }
}

}  // namespace vantora
