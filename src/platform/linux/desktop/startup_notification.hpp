// SPDX-License-Identifier: MIT
//
// The end of the launcher's busy cursor on X11 (freedesktop.org, Startup Notification
// Protocol). A launcher that started a program waits for the window that carries its
// identifier, which an agent without a window never opens.
#pragma once

#include <string>
#include <vector>

namespace vantora::StartupNotification {

/// Says on `display` (as in DISPLAY) that the start with the identifier `startupId` is over.
/// Blocks for as long as the X server does not answer; any thread. Does nothing where there is
/// no server.
void complete(const std::string& display, const std::string& startupId);

/// The message for it, cut into the 20 bytes of a client message each; the last ones are zero.
[[nodiscard]] std::vector<std::string> completionParts(const std::string& startupId);

}  // namespace vantora::StartupNotification
