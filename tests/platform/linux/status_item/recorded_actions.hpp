// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ports/status_item.hpp"

namespace vantora::test {

/// Notes what an item is asked to do. Outlives the item.
struct RecordedActions {
  [[nodiscard]] StatusItemActions actions() {
    return {.openSettings =
                [this](std::string_view token) { did.push_back("open:" + std::string(token)); },
            .togglePause =
                [this] {
                  isPaused = !isPaused;
                  did.emplace_back("pause");
                  if (onPause != nullptr) {
                    onPause();
                  }
                },
            .quit = [this] { did.emplace_back("quit"); },
            .isPaused = [this] { return isPaused; }};
  }

  std::vector<std::string> did;
  bool isPaused = false;
  std::function<void()> onPause = nullptr;  ///< Sampling was paused or resumed.
};

}  // namespace vantora::test
