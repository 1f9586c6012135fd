// SPDX-License-Identifier: MIT
//
// Decimal texts that follow no locale: the C library's printf writes the locale's
// separator, and std::to_chars for floating point needs macOS 13.3.
#pragma once

#include <string>

namespace vantora {

/// `value` with exactly `decimals` (0 to 9) digits after `separator`, rounded to the
/// nearest as "%.*f" does in the C locale (the exact binary value decides; a tie goes
/// to the even digit). `value` must be finite and below 1e15 in magnitude.
[[nodiscard]] std::string fixedDecimal(double value, int decimals, char separator = '.');

}  // namespace vantora
