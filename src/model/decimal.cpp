// SPDX-License-Identifier: MIT
#include "model/decimal.hpp"

#include <array>
#include <cstdio>
#include <string_view>

namespace vantora {

std::string fixedDecimal(double value, int decimals, char separator) {
  std::array<char, 40> buffer{};
  const int length = std::snprintf(buffer.data(), buffer.size(), "%.*f", decimals, value);
  if (length < 0 || static_cast<std::size_t>(length) >= buffer.size()) {
    return {};
  }
  const std::string_view printed(buffer.data(), static_cast<std::size_t>(length));
  if (decimals == 0) {
    return std::string(printed);
  }
  // The separator of the process's locale, which may take several bytes, is
  // between the leading digits and the last `decimals` ones.
  const std::size_t whole = printed.find_first_not_of("-0123456789");
  const std::string_view fraction =
      printed.substr(printed.size() - static_cast<std::size_t>(decimals));
  std::string text(printed.substr(0, whole));
  text += separator;
  text += fraction;
  return text;
}

}  // namespace vantora
