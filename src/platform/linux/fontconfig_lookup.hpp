// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/font_selection.hpp"

namespace vantora {

/// Asks fontconfig for the user's interface face ("system-ui", "sans-serif") and
/// monospaced face in medium weight, upright. A family whose digits differ in width is
/// passed over for the next one, since the readings would jump; so is a monospaced
/// family that is not. Other fonts are added for those printable characters of ASCII, the
/// degree sign and the dash that a face lacks.
///
/// Everything that fontconfig loads is freed again: call it once, at start, while nobody
/// else uses fontconfig, and through lookUpApart() where the pages that it touched count.
/// A change of the user's fonts is seen at the next start. Lists stay empty where no font
/// fits; that is no error.
///
/// `configurationFile` takes the place of the user's configuration, for tests.
[[nodiscard]] FontSelection lookUpFonts(const std::string& configurationFile = {});

}  // namespace vantora
