// SPDX-License-Identifier: MIT
//
// Fonts with one property that no packaged font has in isolation, made from a sound
// TrueType file by changing single values in it (OpenType 1.9, "otff", "hmtx", "cmap").
#pragma once

#include <cstdint>
#include <string>

namespace vantora::test {

/// The font with another advance for the glyph, in font units.
[[nodiscard]] std::string withAdvance(std::string font, unsigned glyph, unsigned advance);

/// The font without the character, and without those that share its range behind it.
[[nodiscard]] std::string withoutCharacter(std::string font, std::uint32_t character);

}  // namespace vantora::test
