// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "support/virtual_time.hpp"

namespace vantora::test {

/// For what calls a function after a while.
class CountedCalls : public testing::Test {
 protected:
  /// Lets the time go by and returns how many calls there have been since the beginning.
  int callsAfter(Seconds wait) {
    time.advance(wait);
    return calls;
  }

  VirtualTime time;
  std::unique_ptr<VirtualQueue> queue = time.makeQueue();
  int calls = 0;
  std::function<void()> call = [this] { ++calls; };
};

}  // namespace vantora::test
