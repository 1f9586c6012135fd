// SPDX-License-Identifier: MIT
#include "app/event_log.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace vantora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EventLogTest : public testing::Test {
 protected:
  EventLog log(EventLog::Level level) {
    return EventLog(level, [this](const std::string& line) { lines_.push_back(line); });
  }
  std::vector<std::string> lines_;
};

TEST_F(EventLogTest, KnowsTwoLevelsByTheirNames) {
  EXPECT_EQ(EventLog::levelOf("info"), EventLog::Level::info);
  EXPECT_EQ(EventLog::levelOf("debug"), EventLog::Level::debug);
  for (const char* name : {"", "1", "INFO", "none", "trace"}) {
    EXPECT_EQ(EventLog::levelOf(name), EventLog::Level::none) << name;
  }
}

TEST_F(EventLogTest, IsSilentUnlessTheEnvironmentAsksForIt) {
  const auto note = [this] {
    EventLog::fromEnvironment([this](const std::string& line) {
      lines_.push_back(line);
    }).info("i");
  };
  unsetenv("VANTORA_LOG");
  note();
  EXPECT_THAT(lines_, IsEmpty());
  setenv("VANTORA_LOG", "info", 1);
  note();
  unsetenv("VANTORA_LOG");
  EXPECT_THAT(lines_, ElementsAre("i"));
}

TEST_F(EventLogTest, WritesOnlyWhatItsLevelAsksFor) {
  for (const auto level : {EventLog::Level::none, EventLog::Level::info, EventLog::Level::debug}) {
    const EventLog events = log(level);
    events.info("i");
    events.debug("d");
  }
  EXPECT_THAT(lines_, ElementsAre("i", "i", "d"));
  EventLog(EventLog::Level::debug).info("para ninguém");
}

TEST_F(EventLogTest, SaysWhichReadingsComeAndGo) {
  const EventLog events = log(EventLog::Level::info);
  MetricSnapshot before;
  MetricSnapshot after;
  after.samples.set(MetricID::cpuUsage, MetricSample::valid(7, "Linux /proc/stat", {}));
  after.samples.set(MetricID::cpuTemperature, MetricSample::unavailable("sem sensor"));
  events.sampled(before, after);
  EXPECT_THAT(lines_, ElementsAre("leitura cpuUsage: valid (Linux /proc/stat)",
                                  "leitura cpuTemperature: unavailable (sem sensor)"));
  lines_.clear();
  // Another value, and the same reason: nothing that a person would want to know.
  before = after;
  after.samples.set(MetricID::cpuUsage, MetricSample::valid(8, "Linux /proc/stat", {}));
  events.sampled(before, after);
  EXPECT_THAT(lines_, IsEmpty());
  before = after;
  after.samples.set(MetricID::cpuTemperature, MetricSample::unavailable("não responde"));
  events.sampled(before, after);
  EXPECT_THAT(lines_, ElementsAre("leitura cpuTemperature: unavailable (não responde)"));
}

TEST_F(EventLogTest, SaysHowQueriesEnd) {
  const EventLog events = log(EventLog::Level::info);
  events.queried("Codex", rawText(CodexQuotaStatus::disabled),
                 rawText(CodexQuotaStatus::connecting));
  events.queried("Codex", rawText(CodexQuotaStatus::connecting),
                 rawText(CodexQuotaStatus::connecting));
  events.queried("Claude", rawText(ClaudeQuotaStatus::disabled), rawText(ClaudeQuotaStatus::ready));
  EXPECT_THAT(lines_, ElementsAre("cotas do Codex: disabled → connecting",
                                  "cotas do Claude: disabled → ready"));
}

}  // namespace
}  // namespace vantora
