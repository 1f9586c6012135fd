// SPDX-License-Identifier: MIT
#include "quota/codex/rate_limits.hpp"

#include <gtest/gtest.h>

#include <string>

namespace vantora {
namespace {

using CodexRateLimits::decode;

std::string answerWithWindow(const std::string& members) {
  return R"({"rateLimits":{"primary":{)" + members + "}}}";
}

TEST(CodexRateLimits, ReadsEveryMember) {
  const auto envelope = decode(R"({
    "accountId":"acc","ordinaryUsageAllowed":false,
    "rateLimits":{"limitId":"old","primary":{"usedPercent":1}},
    "rateLimitsByLimitId":{"codex":{"limitId":"other","limitName":"Codex",
      "primary":{"usedPercent":12.5,"windowDurationMins":300,"resetsAt":1790000000},
      "secondary":{"usedPercent":40,"windowDurationMins":10080,"resetsAt":1790400000}}}})");
  ASSERT_TRUE(envelope);
  EXPECT_EQ(envelope->accountId, "acc");
  EXPECT_EQ(envelope->ordinaryUsageAllowed, false);
  EXPECT_EQ(envelope->rateLimits->limitId, "old");
  EXPECT_EQ(envelope->rateLimits->primary->usedPercent, 1);
  ASSERT_EQ(envelope->rateLimitsByLimitId->size(), 1U);
  const auto& [id, bucket] = *envelope->rateLimitsByLimitId->begin();
  EXPECT_EQ(id, "codex");
  EXPECT_EQ(bucket.limitId, "other");
  EXPECT_EQ(bucket.limitName, "Codex");
  EXPECT_EQ(bucket.primary->usedPercent, 12.5);
  EXPECT_EQ(bucket.primary->windowDurationMins, 300);
  EXPECT_EQ(bucket.primary->resetsAt, 1'790'000'000);
  EXPECT_EQ(bucket.secondary->windowDurationMins, 10'080);
}

TEST(CodexRateLimits, TakesNullForAMissingMember) {
  const auto envelope = decode(R"({"accountId":null,"ordinaryUsageAllowed":null,
    "rateLimitsByLimitId":null,"rateLimits":{"limitId":null,"limitName":null,
    "primary":{"usedPercent":5,"windowDurationMins":null,"resetsAt":null},"secondary":null}})");
  ASSERT_TRUE(envelope);
  EXPECT_FALSE(envelope->accountId);
  EXPECT_FALSE(envelope->ordinaryUsageAllowed);
  EXPECT_FALSE(envelope->rateLimitsByLimitId);
  EXPECT_FALSE(envelope->rateLimits->limitId);
  EXPECT_FALSE(envelope->rateLimits->limitName);
  EXPECT_FALSE(envelope->rateLimits->primary->windowDurationMins);
  EXPECT_FALSE(envelope->rateLimits->primary->resetsAt);
  EXPECT_FALSE(envelope->rateLimits->secondary);
  EXPECT_TRUE(decode(R"({"rateLimits":null})"));
}

TEST(CodexRateLimits, IgnoresUnknownMembers) {
  EXPECT_TRUE(decode(R"({"planType":"plus","credits":{"balance":[1]},
    "rateLimits":{"extra":1,"primary":{"usedPercent":5,"more":"x"}}})"));
  EXPECT_TRUE(decode("{}"));
}

TEST(CodexRateLimits, RefusesAWindowWithoutAUsedPercentage) {
  EXPECT_FALSE(decode(answerWithWindow(R"("windowDurationMins":10080)")));
  EXPECT_FALSE(decode(answerWithWindow(R"("usedPercent":null)")));
}

TEST(CodexRateLimits, RefusesEveryMemberOfAnotherType) {
  for (const char* member :
       {R"("accountId":7)", R"("ordinaryUsageAllowed":1)", R"("ordinaryUsageAllowed":"true")",
        R"("rateLimits":[])", R"("rateLimits":"x")", R"("rateLimitsByLimitId":[])",
        R"("rateLimitsByLimitId":{"a":null})", R"("rateLimitsByLimitId":{"a":7})",
        R"("rateLimits":{"limitId":1})", R"("rateLimits":{"limitName":false})",
        R"("rateLimits":{"primary":[]})", R"("rateLimits":{"secondary":1})"}) {
    EXPECT_FALSE(decode(std::string("{") + member + "}")) << member;
  }
  for (const char* member :
       {R"("usedPercent":"5")", R"("usedPercent":true)",
        R"("usedPercent":5,"windowDurationMins":"10080")",
        R"("usedPercent":5,"windowDurationMins":10080.5)",
        R"("usedPercent":5,"windowDurationMins":9223372036854775808)",
        R"("usedPercent":5,"resetsAt":1.5)", R"("usedPercent":5,"resetsAt":"2026-01-01")"}) {
    EXPECT_FALSE(decode(answerWithWindow(member))) << member;
  }
}

TEST(CodexRateLimits, RefusesAWrongMemberEvenInTheFormThatIsNotUsed) {
  EXPECT_FALSE(decode(R"({"rateLimitsByLimitId":{},"rateLimits":{"primary":{}}})"));
}

TEST(CodexRateLimits, ReadsAnIntegralNumberHoweverItIsWritten) {
  const auto envelope =
      decode(answerWithWindow(R"("usedPercent":5,"windowDurationMins":1.008e4,"resetsAt":10.0)"));
  ASSERT_TRUE(envelope);
  EXPECT_EQ(envelope->rateLimits->primary->windowDurationMins, 10'080);
  EXPECT_EQ(envelope->rateLimits->primary->resetsAt, 10);
}

TEST(CodexRateLimits, RefusesWhatIsNoObject) {
  for (const char* text : {"", " ", "[]", "null", "7", "\"x\"", "{", "{}x", "{}{}"}) {
    EXPECT_FALSE(decode(text)) << text;
  }
}

TEST(CodexRateLimits, HoldsHostileInput) {
  EXPECT_FALSE(decode(std::string(100'000, '[')));
  EXPECT_FALSE(decode(std::string(100'000, '[') + std::string(100'000, ']')));
  std::string nested;
  for (int depth = 0; depth < 100'000; ++depth) {
    nested += R"({"rateLimits":)";
  }
  EXPECT_FALSE(decode(nested + "{}" + std::string(100'000, '}')));
  EXPECT_FALSE(decode(answerWithWindow(R"("usedPercent":1e999)")));
  EXPECT_FALSE(decode(answerWithWindow(R"("usedPercent":-1e999)")));
  EXPECT_FALSE(decode(R"({"accountId":"\ud800"})"));
  EXPECT_FALSE(decode(R"({"accountId":"\udc00\ud800"})"));
  EXPECT_FALSE(decode("{\"accountId\":\"\xff\"}"));
  EXPECT_FALSE(decode("{\"accountId\":\"\xc3\"}"));
  EXPECT_FALSE(decode("{\"accountId\":\"\xed\xa0\x80\"}"));
}

TEST(CodexRateLimits, TakesTheLastOfADuplicateMember) {
  EXPECT_EQ(decode(R"({"accountId":"a","accountId":"b"})")->accountId, "b");
  EXPECT_FALSE(decode(R"({"accountId":"a","accountId":7})"));
  const auto envelope = decode(R"({"rateLimitsByLimitId":{
    "a":{"primary":{"usedPercent":1}},"a":{"primary":{"usedPercent":2}}}})");
  ASSERT_TRUE(envelope);
  ASSERT_EQ(envelope->rateLimitsByLimitId->size(), 1U);
  EXPECT_EQ(envelope->rateLimitsByLimitId->at("a").primary->usedPercent, 2);
}

}  // namespace
}  // namespace vantora
