// SPDX-License-Identifier: MIT
#include "quota/status_word.hpp"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "quota/provider_cases.hpp"
#include "quota/provider_fixture.hpp"

namespace vantora {
namespace {

template <typename Case>
class StatusWordTest : public test::QuotaProviderFixture<Case> {};
TYPED_TEST_SUITE(StatusWordTest, test::ProviderCases, test::ProviderCaseNames);

TYPED_TEST(StatusWordTest, IsOnTheBottomLineWithDashesOnTheTopLine) {
  using Kind = typename TypeParam::Status;
  const std::map<Kind, std::string> words{
      {Kind::disabled, "OFF"},   {Kind::dependencyMissing, "CLI"},
      {Kind::connecting, "..."}, {Kind::needsAuthentication, "LOGIN"},
      {Kind::ready, "--"},       {Kind::unsupportedVersion, "VERS"},
      {Kind::stale, "--"},       {Kind::error, "ERRO"}};
  const WallTime now{std::chrono::seconds{1'767'225'600}};
  for (const auto& [status, word] : words) {
    typename TypeParam::State state;
    state.status = status;
    EXPECT_EQ(TypeParam::text(TypeParam::bottom, state, now), word);
    EXPECT_EQ(TypeParam::text(TypeParam::top, state, now), "--") << word;
  }
}

TYPED_TEST(StatusWordTest, ReplacesAValueThatIsThirtyMinutesOld) {
  using Kind = typename TypeParam::Status;
  this->becomeReady(Seconds{90'000});
  for (const Kind status : {Kind::ready, Kind::stale}) {
    auto state = this->state();
    state.status = status;
    const WallTime read = *state.lastSuccess;
    EXPECT_NE(TypeParam::text(TypeParam::top, state, read + std::chrono::seconds{1799}), "--");
    for (const MetricID line : {TypeParam::top, TypeParam::bottom}) {
      EXPECT_EQ(TypeParam::text(line, state, read + std::chrono::seconds{1800}), "--");
    }
  }
}

}  // namespace
}  // namespace vantora
