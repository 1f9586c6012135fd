// SPDX-License-Identifier: MIT
#pragma once

#include <QApplication>

#include "settings/toolkit/agent_connection.hpp"

namespace vantora {

/// The toolkit for one menu or one tool tip, without what only a window needs: it is
/// waited for by a user who has clicked already. Once, in main.
class PopupApplication {
 public:
  PopupApplication(int& argc, char** argv);

  /// What the agent says; its end ends the program.
  AgentConnection& connection() { return connection_; }

  /// Returns the exit status.
  [[nodiscard]] static int run() { return QApplication::exec(); }

 private:
  QApplication application_;
  AgentConnection connection_;
};

/// Dark colours, if the desktop prefers them and the toolkit has not taken them already.
void useDesktopColors(bool isDark);

}  // namespace vantora
