// SPDX-License-Identifier: MIT
#include "status/markup.hpp"

namespace vantora {

std::string escapedForMarkup(std::string_view text) {
  std::string escaped;
  escaped.reserve(text.size());
  for (const char character : text) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

}  // namespace vantora
