// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Has the toolkit ask the user for files with the desktop's own dialogs where it would
/// otherwise bring its own. Once, before the application is made.
void useDesktopDialogs();

}  // namespace vantora
