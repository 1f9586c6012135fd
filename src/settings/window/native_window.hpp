// SPDX-License-Identifier: MIT
//
// What the window does in a way of each system's own.
#pragma once

#include <QString>

class QWidget;

namespace vantora {

/// The file of WindowMemory, beside the configuration.
[[nodiscard]] QString windowMemoryFile();

/// Brings the window, which has just been shown for the first time, before the others, where
/// showing it does not do so. The user has asked for it by a click in the agent.
void bringToFront(QWidget& window);

}  // namespace vantora
