// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <span>
#include <string>
#include <string_view>

namespace vantora {

/// `text` with the letters A to Z in lower case and every other byte as it is, whatever
/// the locale: for host names and for the English words that programs answer with.
[[nodiscard]] inline std::string asciiLowerCased(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](char character) {
    const bool isUpper = character >= 'A' && character <= 'Z';
    return isUpper ? static_cast<char>(character - 'A' + 'a') : character;
  });
  return result;
}

/// Whether `text` contains any of `words`.
[[nodiscard]] inline bool containsAny(std::string_view text,
                                      std::span<const std::string_view> words) {
  return std::any_of(words.begin(), words.end(), [text](std::string_view word) {
    return text.find(word) != std::string_view::npos;
  });
}

}  // namespace vantora
