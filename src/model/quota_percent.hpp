// SPDX-License-Identifier: MIT
//
// The short text of one quota percentage, the same for every quota integration.
#pragma once

#include <string>

namespace vantora {

/// How the user wants a quota percentage written.
struct QuotaPercentStyle {
  bool showUsed = false;  ///< The used share instead of the remaining one.
  bool oneDecimal = false;
  bool isStale = false;  ///< The value is an earlier one: the query after it failed.
};

/// `used` (finite, percent, may exceed 100) as "57%", "42.3%" or "<1%", with the mark
/// "*" when it is stale and else "!" when more than everything is used. Always cut down,
/// never rounded up, with a full stop whatever the locale.
[[nodiscard]] std::string quotaPercentText(double used, QuotaPercentStyle style);

}  // namespace vantora
