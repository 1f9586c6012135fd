// SPDX-License-Identifier: MIT
#include "settings/toolkit/color_scheme.hpp"

namespace vantora {

// The toolkit follows the system here.
void followColorScheme() {}

}  // namespace vantora
