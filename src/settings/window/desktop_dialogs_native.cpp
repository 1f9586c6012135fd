// SPDX-License-Identifier: MIT
#include "settings/window/desktop_dialogs.hpp"

namespace vantora {

// The toolkit's dialogs are the system's here.
void useDesktopDialogs() {}

}  // namespace vantora
