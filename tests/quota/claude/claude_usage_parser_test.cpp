// SPDX-License-Identifier: MIT
#include "quota/claude/claude_usage_parser.hpp"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace vantora {
namespace {

using ClaudeUsageParser::dateFromISO;
using ClaudeUsageParser::dateFromSeconds;
using ClaudeUsageParser::parseUsageResponse;

const ClaudeUsageAnswer noWindows = ClaudeUsageAbsence::noWindows;
const ClaudeUsageAnswer planLimitsUnavailable = ClaudeUsageAbsence::planLimitsUnavailable;

std::string limits(const std::string& windows) {
  return R"({"rate_limits_available":true,"rate_limits":{)" + windows + "}}";
}

std::optional<ClaudeUsageReading> readingOf(const std::string& windows) {
  const auto answer = parseUsageResponse(limits(windows));
  const auto* reading = answer ? std::get_if<ClaudeUsageReading>(&*answer) : nullptr;
  return reading != nullptr ? std::optional(*reading) : std::nullopt;
}

std::optional<WallTime> resetOf(const std::string& resetsAt) {
  const auto reading = readingOf(R"("five_hour":{"utilization":1,"resets_at":)" + resetsAt + "}");
  EXPECT_TRUE(reading) << resetsAt;
  return reading ? reading->sessionResetAt : std::nullopt;
}

TEST(ClaudeUsageParser, ReadsBothWindows) {
  EXPECT_EQ(
      parseUsageResponse(
          limits(R"("five_hour":{"utilization":12.5,"resets_at":"2026-09-21T18:00:00Z"},)"
                 R"("seven_day":{"utilization":37,"resets_at":1790400000},"seven_day_opus":null)")),
      ClaudeUsageAnswer(ClaudeUsageReading{.weeklyUsed = 37,
                                           .weeklyResetAt = wallTimeFromUnix(1'790'400'000),
                                           .sessionUsed = 12.5,
                                           .sessionResetAt = wallTimeFromUnix(1'790'013'600)}));
}

TEST(ClaudeUsageParser, FindsNoWindowsInAnEmptyAnswer) {
  EXPECT_EQ(parseUsageResponse("{}"), noWindows);
  EXPECT_EQ(parseUsageResponse(R"({"rate_limits_available":null,"rate_limits":null})"), noWindows);
  EXPECT_EQ(parseUsageResponse(limits("")), noWindows);
  EXPECT_EQ(parseUsageResponse(limits(R"("five_hour":null,"seven_day":null)")), noWindows);
  EXPECT_EQ(parseUsageResponse(limits(R"("five_hour":{},"seven_day":{})")), noWindows);
}

TEST(ClaudeUsageParser, BelievesThatLimitsAreUnavailableWhateverElseIsThere) {
  EXPECT_EQ(parseUsageResponse(R"({"rate_limits_available":false,"rate_limits":null})"),
            planLimitsUnavailable);
  EXPECT_EQ(parseUsageResponse(
                R"({"rate_limits_available":false,"rate_limits":{"five_hour":{"utilization":1}}})"),
            planLimitsUnavailable);
}

TEST(ClaudeUsageParser, TakesAMissingAvailabilityForTrue) {
  EXPECT_EQ(parseUsageResponse(R"({"rate_limits":{"seven_day":{"utilization":1}}})"),
            ClaudeUsageAnswer(ClaudeUsageReading{
                .weeklyUsed = 1, .weeklyResetAt = {}, .sessionUsed = {}, .sessionResetAt = {}}));
}

TEST(ClaudeUsageParser, RefusesWrongTypesOutsideOfAWindow) {
  for (const char* text :
       {R"({"rate_limits_available":"true"})", R"({"rate_limits_available":1})",
        R"({"rate_limits":[]})", R"({"rate_limits":"x"})", R"({"rate_limits":{"five_hour":7}})",
        R"({"rate_limits":{"seven_day":[]}})",
        R"({"rate_limits_available":false,"rate_limits":{"seven_day":"x"}})"}) {
    EXPECT_FALSE(parseUsageResponse(text)) << text;
  }
}

TEST(ClaudeUsageParser, RefusesWhatIsNoObject) {
  for (const char* text : {"", "[]", "null", "1", "\"x\"", "{", "{}}"}) {
    EXPECT_FALSE(parseUsageResponse(text)) << text;
    EXPECT_FALSE(ClaudeUsageParser::parse(text)) << text;
  }
}

TEST(ClaudeUsageParser, TakesAWrongTypeInsideOfAWindowForAMissingMember) {
  for (const char* utilization : {R"("40")", "true", "[40]", "{}", "null"}) {
    const auto reading = readingOf(std::string(R"("five_hour":{"utilization":)") + utilization +
                                   R"(,"resets_at":1790000000},"seven_day":{"utilization":3})");
    ASSERT_TRUE(reading) << utilization;
    EXPECT_FALSE(reading->sessionUsed) << utilization;
    EXPECT_FALSE(reading->sessionResetAt) << utilization;
    EXPECT_EQ(reading->weeklyUsed, 3);
  }
  for (const char* resetsAt : {"true", "[]", "{}", "null", R"("")", R"("soon")"}) {
    EXPECT_EQ(resetOf(resetsAt), std::nullopt) << resetsAt;
  }
}

TEST(ClaudeUsageParser, TakesOnlySharesThatAreNotNegative) {
  EXPECT_FALSE(readingOf(R"("five_hour":{"utilization":-1})"));
  EXPECT_EQ(parseUsageResponse(
                limits(R"("five_hour":{"utilization":-1},"seven_day":{"utilization":"x"})")),
            noWindows);
  EXPECT_EQ(readingOf(R"("five_hour":{"utilization":0})")->sessionUsed, 0);
  EXPECT_EQ(readingOf(R"("five_hour":{"utilization":130})")->sessionUsed, 130);
}

TEST(ClaudeUsageParser, CallsMoreThanAHundredOverUsed) {
  EXPECT_FALSE(readingOf(R"("five_hour":{"utilization":100})")->overUsed());
  EXPECT_TRUE(readingOf(R"("five_hour":{"utilization":100.5})")->overUsed());
  EXPECT_FALSE(readingOf(R"("seven_day":{"utilization":100})")->overUsed());
  EXPECT_TRUE(readingOf(R"("seven_day":{"utilization":130})")->overUsed());
}

TEST(ClaudeUsageParser, NeverGivesAResetWithoutItsShare) {
  const auto reading =
      readingOf(R"("five_hour":{"resets_at":1790000000},"seven_day":{"utilization":1})");
  ASSERT_TRUE(reading);
  EXPECT_FALSE(reading->sessionResetAt);
}

TEST(ClaudeUsageParser, ReadsResetsInSecondsMillisecondsAndText) {
  EXPECT_EQ(resetOf("1767225600"), wallTimeFromUnix(1'767'225'600));
  EXPECT_EQ(resetOf("1767225600000"), wallTimeFromUnix(1'767'225'600));
  EXPECT_EQ(resetOf("1767225600.5"), wallTimeFromUnix(1'767'225'600.5));
  EXPECT_EQ(resetOf(R"("2026-01-01T00:00:00.123456+00:00")"), wallTimeFromUnix(1'767'225'600));
  EXPECT_EQ(resetOf(R"("1767225600")"), std::nullopt);
}

TEST(ClaudeUsageParser, BelievesSecondsBetween1970And2100) {
  EXPECT_EQ(dateFromSeconds(0), std::nullopt);
  EXPECT_EQ(dateFromSeconds(-1), std::nullopt);
  EXPECT_EQ(dateFromSeconds(0.5), wallTimeFromUnix(0.5));
  EXPECT_EQ(dateFromSeconds(4'102'444'799), wallTimeFromUnix(4'102'444'799));
  EXPECT_EQ(dateFromSeconds(4'102'444'800), std::nullopt);
  EXPECT_EQ(dateFromSeconds(1e11), std::nullopt);
  EXPECT_EQ(dateFromSeconds(100'000'000'001), wallTimeFromUnix(100'000'000.001));
  EXPECT_EQ(dateFromSeconds(4'102'444'799'999), wallTimeFromUnix(4'102'444'799.999));
  EXPECT_EQ(dateFromSeconds(4'102'444'800'000), std::nullopt);
  EXPECT_EQ(dateFromSeconds(1e300), std::nullopt);
  EXPECT_EQ(dateFromSeconds(std::numeric_limits<double>::infinity()), std::nullopt);
  EXPECT_EQ(dateFromSeconds(std::nan("")), std::nullopt);
}

TEST(ClaudeUsageParser, DropsFractionsWhereverTheyStandInADate) {
  const auto newYear = wallTimeFromUnix(1'767'225'600);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00Z"), newYear);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00.999999Z"), newYear);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00.090Z"), newYear);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00.1.2Z"), newYear);
  EXPECT_EQ(dateFromISO("2026.7-01-01T00:00:00Z"), newYear);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00Z.5"), newYear);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00.Z"), std::nullopt);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00.5"), std::nullopt) << "ends with the fraction";
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00Z."), std::nullopt);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00,5Z"), std::nullopt);
}

TEST(ClaudeUsageParser, BelievesDatesBetween1970And2100) {
  EXPECT_EQ(dateFromISO("1970-01-01T00:00:00Z"), std::nullopt);
  EXPECT_EQ(dateFromISO("1970-01-01T00:00:01Z"), wallTimeFromUnix(1));
  EXPECT_EQ(dateFromISO("2099-12-31T23:59:59Z"), wallTimeFromUnix(4'102'444'799));
  EXPECT_EQ(dateFromISO("2100-01-01T00:00:00Z"), std::nullopt);
  EXPECT_EQ(dateFromISO("2099-12-31T23:59:59-00:01"), std::nullopt);
  EXPECT_EQ(dateFromISO("9999-12-31T23:59:59Z"), std::nullopt);
  EXPECT_EQ(dateFromISO("0000-01-01T00:00:00Z"), std::nullopt);
}

TEST(ClaudeUsageParser, RefusesDatesOfAnotherForm) {
  EXPECT_EQ(dateFromISO("2026-01-01 00:00:00Z"), std::nullopt);
  EXPECT_EQ(dateFromISO("2026-01-01T00:00:00"), std::nullopt);
  EXPECT_EQ(dateFromISO(""), std::nullopt);
}

TEST(ClaudeUsageParser, ReadsTheWindowsWithoutTheObjectAroundThem) {
  const auto windows = ClaudeUsageParser::parse(R"({"seven_day":{"utilization":4}})");
  ASSERT_TRUE(windows);
  ASSERT_TRUE(windows->reading);
  EXPECT_EQ(windows->reading->weeklyUsed, 4);
  EXPECT_FALSE(ClaudeUsageParser::parse("{}")->reading);
  EXPECT_FALSE(ClaudeUsageParser::parse(R"({"seven_day":4})"));
}

TEST(ClaudeUsageParser, HoldsHostileInput) {
  EXPECT_FALSE(parseUsageResponse(std::string(100'000, '[')));
  std::string nested;
  for (int depth = 0; depth < 100'000; ++depth) {
    nested += R"({"rate_limits":)";
  }
  EXPECT_FALSE(parseUsageResponse(nested + "1" + std::string(100'000, '}')));
  EXPECT_FALSE(parseUsageResponse(limits(R"("five_hour":{"utilization":1e999})")));
  EXPECT_FALSE(parseUsageResponse(limits(R"("five_hour":{"resets_at":"\ud800"})")));
  EXPECT_FALSE(parseUsageResponse(limits("\"five_hour\":{\"resets_at\":\"\xff\"}")));
  EXPECT_EQ(resetOf("18446744073709551616"), std::nullopt);
  EXPECT_EQ(resetOf('"' + std::string(100'000, '.') + '"'), std::nullopt);
  EXPECT_EQ(readingOf(R"("five_hour":{"utilization":1,"utilization":2})")->sessionUsed, 2);
}

}  // namespace
}  // namespace vantora
