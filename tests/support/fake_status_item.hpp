// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "app/status_item.hpp"

namespace vantora::test {

/// A bar of 24 points that remembers everything it was shown.
class FakeStatusItem final : public StatusItem {
 public:
  [[nodiscard]] double thickness() const override { return 24; }
  void show(const StatusPresentation& presentation) override { shown.push_back(presentation); }

  std::vector<StatusPresentation> shown;
};

}  // namespace vantora::test
