// SPDX-License-Identifier: MIT
#include "sampling/apple/mach_ticks.hpp"

#include <gtest/gtest.h>

#include <array>
#include <limits>

namespace vantora {
namespace {

TEST(MachTicks, CountsUserSystemAndNiceAsActive) {
  const std::array<std::uint32_t, 4> userSystemIdleNice{1, 20, 300, 4000};
  EXPECT_EQ(MachTicks::fromLoad(userSystemIdleNice), (CPUTicks{.active = 4021, .idle = 300}));
}

TEST(MachTicks, WidensBeforeItAdds) {
  constexpr std::uint32_t most = std::numeric_limits<std::uint32_t>::max();
  const std::array<std::uint32_t, 4> load{most, most, most, most};
  EXPECT_EQ(MachTicks::fromLoad(load), (CPUTicks{.active = 3ULL * most, .idle = most}));
}

TEST(MachTicks, NamesTheStatusOfAFailedCallInDecimal) {
  EXPECT_EQ(MachTicks::failure(4), "Mach host_statistics: 4");
  EXPECT_EQ(MachTicks::failure(std::numeric_limits<std::int32_t>::min()),
            "Mach host_statistics: -2147483648");
}

}  // namespace
}  // namespace vantora
