// SPDX-License-Identifier: MIT
//
// What every UserDefaults promises. A system of a test has `defaults` and refuse().
#pragma once

#include <gtest/gtest.h>

#include "settings/user_defaults.hpp"

namespace vantora::test {

template <typename System>
class UserDefaultsContract : public testing::Test {
 protected:
  System system_;
  UserDefaults& defaults_ = system_.defaults;
};
TYPED_TEST_SUITE_P(UserDefaultsContract);

TYPED_TEST_P(UserDefaultsContract, HasNothingBeforeAnythingWasStored) {
  EXPECT_EQ(this->defaults_.text("a"), std::nullopt);
}

TYPED_TEST_P(UserDefaultsContract, KeepsEachTextUnderItsKeyUntilItIsReplaced) {
  EXPECT_EQ(this->defaults_.setText("a", "/usr/bin/codex"), std::nullopt);
  EXPECT_EQ(this->defaults_.setText("b", ""), std::nullopt);
  EXPECT_EQ(this->defaults_.text("a"), "/usr/bin/codex");
  EXPECT_EQ(this->defaults_.text("b"), "");
  EXPECT_EQ(this->defaults_.setText("a", "ção"), std::nullopt);
  EXPECT_EQ(this->defaults_.text("a"), "ção");
  EXPECT_EQ(this->defaults_.text("b"), "");
}

TYPED_TEST_P(UserDefaultsContract, SaysWhyItCouldNotStore) {
  this->system_.refuse();
  const std::optional<Fault> fault = this->defaults_.setText("a", "1");
  ASSERT_TRUE(fault);
  EXPECT_FALSE(fault->detail.empty());
  EXPECT_EQ(this->defaults_.text("a"), std::nullopt);
}

REGISTER_TYPED_TEST_SUITE_P(UserDefaultsContract, HasNothingBeforeAnythingWasStored,
                            KeepsEachTextUnderItsKeyUntilItIsReplaced, SaysWhyItCouldNotStore);

}  // namespace vantora::test
