// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_item_situation.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

TEST(StatusItemSituation, IsDescribedInOneLine) {
  for (const auto situation :
       {StatusItemSituation::shown, StatusItemSituation::noHost, StatusItemSituation::noBus}) {
    EXPECT_FALSE(describe(situation).empty());
    EXPECT_EQ(describe(situation).find('\n'), std::string_view::npos);
  }
}

}  // namespace
}  // namespace vantora
