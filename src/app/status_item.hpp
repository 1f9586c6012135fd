// SPDX-License-Identifier: MIT
//
// The one item in the system's status bar, as the app coordinator sees it.
#pragma once

#include <functional>

#include "status/status_presentation.hpp"

namespace vantora {

/// Lives on the main thread.
class StatusItem {
 public:
  virtual ~StatusItem() = default;

  /// Height of the bar that the item stands in, in points.
  [[nodiscard]] virtual double thickness() const = 0;

  /// Replaces what the item shows: picture (the item becomes `presentation.width` + 6
  /// points long), tool tip and accessibility label (both the accessibility text). An
  /// item that no bar shows at the moment keeps it for when one does.
  virtual void show(const StatusPresentation& presentation) = 0;
};

}  // namespace vantora
