// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace vantora {

/// What the desktop says about its colours (org.freedesktop.appearance, color-scheme).
enum class ColorScheme : std::uint8_t { noPreference, dark, light };

/// The colours that the template is drawn with.
enum class Ink : std::uint8_t {
  light,         ///< For a dark panel.
  dark,          ///< For a light panel.
  lightOnPlate,  ///< On a dark plate of its own: legible on any panel.
};

}  // namespace vantora
