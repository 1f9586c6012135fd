// SPDX-License-Identifier: MIT
#include "quota/claude/internet_date_time.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

TEST(InternetDateTime, ReadsUniversalTime) {
  EXPECT_EQ(unixTimeFromInternetDateTime("1970-01-01T00:00:00Z"), 0);
  EXPECT_EQ(unixTimeFromInternetDateTime("2026-01-01T00:00:00Z"), 1'767'225'600);
  EXPECT_EQ(unixTimeFromInternetDateTime("2026-09-21T14:13:20Z"), 1'790'000'000);
  EXPECT_EQ(unixTimeFromInternetDateTime("2099-12-31T23:59:59Z"), 4'102'444'799);
  EXPECT_EQ(unixTimeFromInternetDateTime("1969-12-31T23:59:59Z"), -1);
}

TEST(InternetDateTime, ReadsOffsets) {
  EXPECT_EQ(unixTimeFromInternetDateTime("2026-01-01T00:00:00+00:00"), 1'767'225'600);
  EXPECT_EQ(unixTimeFromInternetDateTime("2026-01-01T00:00:00-00:00"), 1'767'225'600);
  EXPECT_EQ(unixTimeFromInternetDateTime("2025-12-31T21:00:00-03:00"), 1'767'225'600);
  EXPECT_EQ(unixTimeFromInternetDateTime("2026-01-01T05:45:00+05:45"), 1'767'225'600);
  EXPECT_EQ(unixTimeFromInternetDateTime("2026-01-01T23:59:00+23:59"), 1'767'225'600);
}

TEST(InternetDateTime, KnowsTheCalendar) {
  EXPECT_EQ(unixTimeFromInternetDateTime("2024-02-29T00:00:00Z"), 1'709'164'800);
  EXPECT_TRUE(unixTimeFromInternetDateTime("2000-02-29T00:00:00Z"));
  for (const char* text : {"2025-02-29T00:00:00Z", "2100-02-29T00:00:00Z", "2026-04-31T00:00:00Z",
                           "2026-01-32T00:00:00Z", "2026-01-00T00:00:00Z", "2026-00-01T00:00:00Z",
                           "2026-13-01T00:00:00Z"}) {
    EXPECT_FALSE(unixTimeFromInternetDateTime(text)) << text;
  }
}

TEST(InternetDateTime, KnowsTheClock) {
  for (const char* text : {"2026-01-01T24:00:00Z", "2026-01-01T00:60:00Z", "2026-01-01T00:00:61Z",
                           "2026-01-01T00:00:00+24:00", "2026-01-01T00:00:00+00:60"}) {
    EXPECT_FALSE(unixTimeFromInternetDateTime(text)) << text;
  }
}

TEST(InternetDateTime, RefusesLeapSeconds) {
  EXPECT_FALSE(unixTimeFromInternetDateTime("2016-12-31T23:59:60Z"));
}

TEST(InternetDateTime, RefusesEveryOtherForm) {
  for (const char* text : {"",
                           "2026-01-01",
                           "2026-01-01T00:00:00",
                           "2026-01-01 00:00:00Z",
                           "2026-01-01t00:00:00Z",
                           "2026-01-01T00:00:00z",
                           "2026-01-01T00:00Z",
                           "20260101T000000Z",
                           "2026-1-01T00:00:00Z",
                           "02026-01-01T00:00:00Z",
                           "+2026-01-01T00:00:00Z",
                           "-026-01-01T00:00:00Z",
                           "2026-01-01T00:00:00.5Z",
                           "2026-01-01T00:00:00+0000",
                           "2026-01-01T00:00:00+00",
                           "2026-01-01T00:00:00 00:00",
                           "2026-01-01T00:00:00ZZ",
                           "2026-01-01T00:00:00Z ",
                           " 2026-01-01T00:00:00Z",
                           "2026-01-01T00:00:00+00:00Z",
                           "2026-01-01T0a:00:00Z",
                           "2026-W01-1T00:00:00Z",
                           "2026-01-01T 1:00:00Z",
                           "2026/01/01T00:00:00Z",
                           "2026-01-01T00:00:00\xE2\x88\x92"
                           "03:00"}) {
    EXPECT_FALSE(unixTimeFromInternetDateTime(text)) << text;
  }
}

}  // namespace
}  // namespace vantora
