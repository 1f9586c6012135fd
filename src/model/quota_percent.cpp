// SPDX-License-Identifier: MIT
#include "model/quota_percent.hpp"

#include <algorithm>
#include <cmath>

#include "model/decimal.hpp"

namespace vantora {

std::string quotaPercentText(double used, QuotaPercentStyle style) {
  // The mark speaks of the used share, whichever share is shown.
  const char* mark = style.isStale ? "*" : used > 100 ? "!" : "";
  const double shown = std::clamp(style.showUsed ? used : 100 - used, 0.0, 100.0);
  if (style.oneDecimal) {
    return fixedDecimal(std::floor(shown * 10) / 10, 1) + "%" + mark;
  }
  if (shown > 0 && shown < 1) {
    return std::string("<1%") + mark;
  }
  return std::to_string(static_cast<int>(shown)) + "%" + mark;
}

}  // namespace vantora
