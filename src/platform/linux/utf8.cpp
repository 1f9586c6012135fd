// SPDX-License-Identifier: MIT
#include "platform/linux/utf8.hpp"

#include <array>

namespace vantora {
namespace {

struct Lead {
  unsigned mask;
  unsigned bits;
  char32_t least;  ///< Anything below has a shorter form.
};

// By the number of bytes that follow.
constexpr std::array<Lead, 4> leads{
    {{0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}}};

}  // namespace

char32_t takeCharacter(std::string_view& text) {
  constexpr char32_t replacement = 0xFFFD;
  const unsigned first = static_cast<unsigned char>(text.front());
  const std::string_view rest = text.substr(1);
  text = rest;
  for (std::size_t following = 0; following < leads.size(); ++following) {
    const Lead& lead = leads[following];
    if ((first & lead.mask) != lead.bits) {
      continue;
    }
    char32_t character = first & ~lead.mask & 0xFFU;
    for (std::size_t index = 0; index < following; ++index) {
      if (index >= rest.size() || (static_cast<unsigned char>(rest[index]) & 0xC0U) != 0x80U) {
        return replacement;
      }
      character = character << 6U | (static_cast<unsigned char>(rest[index]) & 0x3FU);
    }
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    if (character < lead.least || isSurrogate || character > 0x10FFFF) {
      return replacement;
    }
    text = rest.substr(following);
    return character;
  }
  return replacement;
}

}  // namespace vantora
