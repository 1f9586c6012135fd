// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/patched_font.hpp"

#include <stdexcept>
#include <string_view>

namespace vantora::test {
namespace {

std::uint32_t number(const std::string& font, std::size_t offset, std::size_t bytes) {
  std::uint32_t value = 0;
  for (std::size_t index = 0; index < bytes; ++index) {
    value = value << 8U | static_cast<unsigned char>(font.at(offset + index));
  }
  return value;
}

void setNumber(std::string& font, std::size_t offset, std::size_t bytes, std::uint32_t value) {
  for (std::size_t index = bytes; index-- > 0; value >>= 8U) {
    font.at(offset + index) = static_cast<char>(value);
  }
}

std::size_t tableOffset(const std::string& font, std::string_view tag) {
  const std::uint32_t tables = number(font, 4, 2);
  for (std::size_t index = 0; index < tables; ++index) {
    const std::size_t record = 12 + index * 16;
    if (std::string_view(font).substr(record, 4) == tag) {
      return number(font, record + 8, 4);
    }
  }
  throw std::runtime_error("the font has no such table");
}

/// Cuts the range that holds the character off before it. Several records may name the
/// same subtable: the second time there is no such range.
void shortenFormat4(std::string& font, std::size_t subtable, std::uint32_t character) {
  const std::size_t segments = number(font, subtable + 6, 2) / 2;
  const std::size_t ends = subtable + 14;
  const std::size_t starts = ends + segments * 2 + 2;
  for (std::size_t index = 0; index < segments; ++index) {
    const std::size_t end = ends + index * 2;
    if (number(font, starts + index * 2, 2) <= character && number(font, end, 2) >= character) {
      setNumber(font, end, 2, character - 1);
      return;
    }
  }
}

void shortenFormat12(std::string& font, std::size_t subtable, std::uint32_t character) {
  for (std::size_t index = 0; index < number(font, subtable + 12, 4); ++index) {
    const std::size_t group = subtable + 16 + index * 12;
    if (number(font, group, 4) <= character && number(font, group + 4, 4) >= character) {
      setNumber(font, group + 4, 4, character - 1);
      return;
    }
  }
}

}  // namespace

std::string withAdvance(std::string font, unsigned glyph, unsigned advance) {
  setNumber(font, tableOffset(font, "hmtx") + std::size_t{glyph} * 4, 2, advance);
  return font;
}

std::string withoutCharacter(std::string font, std::uint32_t character) {
  const std::size_t table = tableOffset(font, "cmap");
  for (std::size_t index = 0; index < number(font, table + 2, 2); ++index) {
    const std::size_t subtable = table + number(font, table + 4 + index * 8 + 4, 4);
    const std::uint32_t format = number(font, subtable, 2);
    if (format == 4) {
      shortenFormat4(font, subtable, character);
    } else if (format == 12) {
      shortenFormat12(font, subtable, character);
    }
  }
  return font;
}

}  // namespace vantora::test
