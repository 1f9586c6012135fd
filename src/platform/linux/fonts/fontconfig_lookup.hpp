// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/fonts/font_selection.hpp"

namespace vantora {

/// Asks fontconfig for the user's interface typeface ("system-ui", "sans-serif") and
/// monospaced typeface in medium weight, upright. A family whose digits differ in width is
/// passed over for the next one, since the readings would jump; so is a monospaced
/// family that is not. Other fonts are added for those printable characters of ASCII, the
/// degree sign and the dash that a typeface lacks.
///
/// Everything that fontconfig loads is freed again: call it while nothing else uses
/// fontconfig. Lists stay empty where no font fits; that is no error.
///
/// `configurationFile` takes the place of the user's configuration, for tests.
[[nodiscard]] FontSelection lookUpFonts(const std::string& configurationFile = {});

}  // namespace vantora
