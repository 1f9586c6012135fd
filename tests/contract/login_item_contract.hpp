// SPDX-License-Identifier: MIT
//
// What every LoginItem promises. A system of a test has `item` and refuse().
#pragma once

#include <gtest/gtest.h>

#include "settings/login_item.hpp"

namespace vantora::test {

template <typename System>
class LoginItemContract : public testing::Test {
 protected:
  System system_;
  LoginItem& item_ = system_.item;
};
TYPED_TEST_SUITE_P(LoginItemContract);

TYPED_TEST_P(LoginItemContract, IsNotRegisteredBeforeAnybodyAsked) {
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
}

TYPED_TEST_P(LoginItemContract, IsEnabledOnceItIsRegisteredAndUntilItIsNoMore) {
  EXPECT_EQ(this->item_.setRegistered(true), std::nullopt);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::enabled);
  EXPECT_EQ(this->item_.setRegistered(false), std::nullopt);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(this->item_.setRegistered(true), std::nullopt);
  EXPECT_EQ(this->item_.status(), LoginItemStatus::enabled);
}

TYPED_TEST_P(LoginItemContract, TakesTheSameRequestTwice) {
  for (const bool registered : {false, true, false}) {
    EXPECT_EQ(this->item_.setRegistered(registered), std::nullopt);
    EXPECT_EQ(this->item_.setRegistered(registered), std::nullopt);
    EXPECT_EQ(this->item_.status(),
              registered ? LoginItemStatus::enabled : LoginItemStatus::notRegistered);
  }
}

TYPED_TEST_P(LoginItemContract, SaysWhyItCouldNotBeRegisteredAndStaysAsItWas) {
  this->system_.refuse();
  const std::optional<Fault> fault = this->item_.setRegistered(true);
  ASSERT_TRUE(fault);
  EXPECT_FALSE(fault->detail.empty());
  EXPECT_EQ(this->item_.status(), LoginItemStatus::notRegistered);
}

REGISTER_TYPED_TEST_SUITE_P(LoginItemContract, IsNotRegisteredBeforeAnybodyAsked,
                            IsEnabledOnceItIsRegisteredAndUntilItIsNoMore, TakesTheSameRequestTwice,
                            SaysWhyItCouldNotBeRegisteredAndStaysAsItWas);

}  // namespace vantora::test
