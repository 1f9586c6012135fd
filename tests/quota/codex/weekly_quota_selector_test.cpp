// SPDX-License-Identifier: MIT
#include "quota/codex/weekly_quota_selector.hpp"

#include <gmock/gmock.h>

#include <cmath>
#include <limits>

namespace vantora {
namespace {

using CodexRateLimits::Bucket;
using CodexRateLimits::Envelope;
using CodexRateLimits::Window;
using Outcome = CodexQuotaSelection::Outcome;
using testing::ElementsAre;
using testing::IsEmpty;

Window weekly(double usedPercent = 40) {
  return {.usedPercent = usedPercent, .windowDurationMins = 10'080, .resetsAt = {}};
}

Window ofMinutes(std::optional<std::int64_t> minutes) {
  return {.usedPercent = 10, .windowDurationMins = minutes, .resetsAt = {}};
}

Envelope categories(std::map<std::string, Bucket> buckets) {
  Envelope envelope;
  envelope.rateLimitsByLimitId = std::move(buckets);
  return envelope;
}

Bucket bucket(std::optional<Window> primary, std::optional<Window> secondary = {}) {
  Bucket made;
  made.primary = primary;
  made.secondary = secondary;
  return made;
}

Envelope oneWeekly(Window window) {
  return categories({{"codex", bucket(window)}});
}

CodexQuotaSelection automatic(const Envelope& envelope) {
  return WeeklyQuotaSelector::select(envelope, std::nullopt);
}

std::optional<WallTime> resetOf(std::optional<std::int64_t> resetsAt) {
  Window window = weekly();
  window.resetsAt = resetsAt;
  return automatic(oneWeekly(window)).reading->resetAt;
}

TEST(WeeklyQuotaSelector, ReadsTheOneWeeklyWindow) {
  Envelope envelope = categories({{"codex", bucket(ofMinutes(300), weekly(42.5))}});
  envelope.rateLimitsByLimitId->at("codex").limitName = "Codex";
  envelope.rateLimitsByLimitId->at("codex").limitId = "ignored";
  envelope.rateLimitsByLimitId->at("codex").secondary->resetsAt = 1'790'000'000;
  envelope.accountId = "acc";
  envelope.ordinaryUsageAllowed = false;

  const CodexQuotaSelection selection = automatic(envelope);
  EXPECT_EQ(selection.outcome, Outcome::ready);
  EXPECT_EQ(selection.reading, (CodexQuotaReading{.usedPercent = 42.5,
                                                  .resetAt = wallTimeFromUnix(1'790'000'000),
                                                  .limitID = "codex",
                                                  .name = "Codex",
                                                  .accountID = "acc",
                                                  .ordinaryUsageAllowed = false,
                                                  .overUsed = false}));
  EXPECT_THAT(selection.candidates, ElementsAre(CodexQuotaCandidate{"codex", "Codex"}));
}

TEST(WeeklyQuotaSelector, NamesTheCategoryOfTheOlderForm) {
  Envelope envelope;
  envelope.rateLimits = bucket(weekly());
  EXPECT_EQ(automatic(envelope).reading->limitID, "compatibilidade");
  EXPECT_THAT(automatic(envelope).candidates,
              ElementsAre(CodexQuotaCandidate{"compatibilidade", std::nullopt}));
  envelope.rateLimits->limitId = "codex";
  EXPECT_EQ(automatic(envelope).reading->limitID, "codex");
}

TEST(WeeklyQuotaSelector, IgnoresTheOlderFormBesideTheCategories) {
  Envelope envelope = categories({{"b", bucket(ofMinutes(300))}});
  envelope.rateLimits = bucket(weekly());
  EXPECT_EQ(automatic(envelope).outcome, Outcome::weeklyUnavailable);
  EXPECT_THAT(automatic(envelope).candidates, ElementsAre(CodexQuotaCandidate{"b", std::nullopt}));
  envelope.rateLimitsByLimitId->clear();
  EXPECT_EQ(automatic(envelope).outcome, Outcome::weeklyUnavailable);
  EXPECT_THAT(automatic(envelope).candidates, IsEmpty());
}

TEST(WeeklyQuotaSelector, FindsNothingInAnEmptyAnswer) {
  const auto selection = WeeklyQuotaSelector::select("{}", std::nullopt);
  ASSERT_TRUE(selection);
  EXPECT_EQ(selection->outcome, Outcome::weeklyUnavailable);
  EXPECT_FALSE(selection->reading);
  EXPECT_THAT(selection->candidates, IsEmpty());
}

TEST(WeeklyQuotaSelector, TakesNoWindowOfAnotherLength) {
  for (const std::optional<std::int64_t> minutes :
       {std::optional<std::int64_t>{}, std::optional<std::int64_t>{300},
        std::optional<std::int64_t>{10'079}, std::optional<std::int64_t>{10'081},
        std::optional<std::int64_t>{-10'080}}) {
    EXPECT_EQ(automatic(oneWeekly(ofMinutes(minutes))).outcome, Outcome::weeklyUnavailable)
        << minutes.value_or(0);
  }
}

TEST(WeeklyQuotaSelector, NeverGuessesBetweenTwoWindows) {
  const auto both = automatic(categories({{"codex", bucket(weekly(), weekly())}}));
  EXPECT_EQ(both.outcome, Outcome::selectionRequired);
  EXPECT_FALSE(both.reading);
  EXPECT_EQ(
      WeeklyQuotaSelector::select(categories({{"codex", bucket(weekly(), weekly())}}), "codex")
          .outcome,
      Outcome::selectionRequired);
}

TEST(WeeklyQuotaSelector, AsksForAChoiceBetweenTwoCategoriesAndFollowsIt) {
  const Envelope envelope =
      categories({{"b", bucket(weekly(20))}, {"a", bucket(ofMinutes(300), weekly(10))}});
  const CodexQuotaSelection open = automatic(envelope);
  EXPECT_EQ(open.outcome, Outcome::selectionRequired);
  EXPECT_THAT(open.candidates, ElementsAre(CodexQuotaCandidate{"a", std::nullopt},
                                           CodexQuotaCandidate{"b", std::nullopt}));

  const CodexQuotaSelection a = WeeklyQuotaSelector::select(envelope, "a");
  EXPECT_EQ(a.outcome, Outcome::ready);
  EXPECT_EQ(a.reading->limitID, "a");
  EXPECT_EQ(a.reading->usedPercent, 10);
  EXPECT_EQ(a.candidates, open.candidates);
  EXPECT_EQ(WeeklyQuotaSelector::select(envelope, "b").reading->usedPercent, 20);
}

TEST(WeeklyQuotaSelector, ReportsThatTheChosenCategoryIsMissing) {
  const Envelope envelope = categories({{"a", bucket(weekly())}});
  const CodexQuotaSelection selection = WeeklyQuotaSelector::select(envelope, "b");
  EXPECT_EQ(selection.outcome, Outcome::selectedCategoryMissing);
  EXPECT_FALSE(selection.reading);
  EXPECT_THAT(selection.candidates, ElementsAre(CodexQuotaCandidate{"a", std::nullopt}));
  EXPECT_EQ(WeeklyQuotaSelector::select(Envelope{}, "b").outcome, Outcome::selectedCategoryMissing);
  EXPECT_EQ(WeeklyQuotaSelector::select(envelope, "").outcome, Outcome::selectedCategoryMissing);
}

TEST(WeeklyQuotaSelector, ReportsThatTheChosenCategoryHasNoWeek) {
  const Envelope envelope =
      categories({{"a", bucket(ofMinutes(300), ofMinutes(300))}, {"b", bucket(weekly())}});
  EXPECT_EQ(WeeklyQuotaSelector::select(envelope, "a").outcome, Outcome::weeklyUnavailable);
  EXPECT_EQ(WeeklyQuotaSelector::select(envelope, "a").candidates.size(), 2U);
}

TEST(WeeklyQuotaSelector, TakesOnlyAFinitePercentageThatIsNotNegative) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  for (const double unusable : {-1.0, -0.001, infinity, -infinity, std::nan("")}) {
    const CodexQuotaSelection selection = automatic(oneWeekly(weekly(unusable)));
    EXPECT_EQ(selection.outcome, Outcome::weeklyUnavailable) << unusable;
    EXPECT_FALSE(selection.reading);
    EXPECT_EQ(selection.candidates.size(), 1U);
  }
  EXPECT_EQ(automatic(oneWeekly(weekly(0))).outcome, Outcome::ready);
  EXPECT_EQ(automatic(oneWeekly(weekly(1e300))).outcome, Outcome::ready);
}

TEST(WeeklyQuotaSelector, CallsMoreThanAHundredOverUsed) {
  EXPECT_FALSE(automatic(oneWeekly(weekly(100))).reading->overUsed);
  EXPECT_TRUE(automatic(oneWeekly(weekly(100.5))).reading->overUsed);
  EXPECT_EQ(automatic(oneWeekly(weekly(100.5))).reading->usedPercent, 100.5);
}

TEST(WeeklyQuotaSelector, BelievesResetsBetween1970And2100) {
  EXPECT_EQ(resetOf(std::nullopt), std::nullopt);
  EXPECT_EQ(resetOf(0), std::nullopt);
  EXPECT_EQ(resetOf(-1), std::nullopt);
  EXPECT_EQ(resetOf(1), wallTimeFromUnix(1));
  EXPECT_EQ(resetOf(4'102'444'799), wallTimeFromUnix(4'102'444'799));
  EXPECT_EQ(resetOf(4'102'444'800), std::nullopt);
  EXPECT_EQ(resetOf(std::numeric_limits<std::int64_t>::max()), std::nullopt);
  EXPECT_EQ(resetOf(std::numeric_limits<std::int64_t>::min()), std::nullopt);
}

TEST(WeeklyQuotaSelector, ListsTheCandidatesInAscendingOrder) {
  const auto selection = WeeklyQuotaSelector::select(
      R"({"rateLimitsByLimitId":{"z":{},"codex":{"limitName":"Codex"},"Z":{},"é":{}}})",
      std::nullopt);
  ASSERT_TRUE(selection);
  EXPECT_THAT(
      selection->candidates,
      ElementsAre(CodexQuotaCandidate{"Z", std::nullopt}, CodexQuotaCandidate{"codex", "Codex"},
                  CodexQuotaCandidate{"z", std::nullopt}, CodexQuotaCandidate{"é", std::nullopt}));
}

TEST(WeeklyQuotaSelector, SelectsNothingFromAnAnswerThatCannotBeDecoded) {
  EXPECT_FALSE(WeeklyQuotaSelector::select("", std::nullopt));
  EXPECT_FALSE(WeeklyQuotaSelector::select(R"({"rateLimits":{"primary":{}}})", std::nullopt));
}

}  // namespace
}  // namespace vantora
