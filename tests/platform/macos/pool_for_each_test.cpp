// SPDX-License-Identifier: MIT
//
// An autorelease pool around each test, as the application's loop has one around each event.
#include <gtest/gtest.h>

#include <optional>

#include "platform/macos/base/autorelease_pool.hpp"

namespace vantora {
namespace {

class PoolForEachTest final : public testing::EmptyTestEventListener {
  void OnTestStart(const testing::TestInfo&) override { pool_.emplace(); }
  void OnTestEnd(const testing::TestInfo&) override { pool_.reset(); }

  std::optional<AutoreleasePool> pool_;
};

// GoogleTest takes the listener over.
[[maybe_unused]] const bool isAdded = [] {
  testing::UnitTest::GetInstance()->listeners().Append(new PoolForEachTest);
  return true;
}();

}  // namespace
}  // namespace vantora
