// SPDX-License-Identifier: MIT
#include "status/markup.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

TEST(Markup, EscapesWhatWouldBeginATagOrAnEntity) {
  EXPECT_EQ(escapedForMarkup("a<b> & c"), "a&lt;b&gt; &amp; c");
}

TEST(Markup, LeavesOtherTextsAsTheyAre) {
  EXPECT_EQ(escapedForMarkup("CPU · 7%\n\"—\" 'x'"), "CPU · 7%\n\"—\" 'x'");
  EXPECT_EQ(escapedForMarkup(""), "");
}

}  // namespace
}  // namespace vantora
