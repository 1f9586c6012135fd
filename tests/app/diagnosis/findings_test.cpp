// SPDX-License-Identifier: MIT
#include "app/diagnosis/findings.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "model/configuration_codec.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

TEST(Findings, TellAGoodConfigurationFromABrokenOneAndFromNone) {
  const test::TemporaryFolder folder;
  const auto file = folder / "configuration.json";
  EXPECT_EQ(configurationFile(file).state, FileReport::State::absent);
  EXPECT_EQ(configurationFile(file).changed, std::nullopt);
  test::writeBytes(file, *ConfigurationCodec::encode(AppConfiguration()));
  EXPECT_EQ(configurationFile(file).state, FileReport::State::good);
  EXPECT_TRUE(configurationFile(file).changed);
  AppConfiguration outOfBounds;
  outOfBounds.intervalSeconds = 3;
  test::writeBytes(file, *ConfigurationCodec::encode(outOfBounds));
  EXPECT_EQ(configurationFile(file).state, FileReport::State::invalid);
  test::writeBytes(file, "no JSON");
  EXPECT_EQ(configurationFile(file).state, FileReport::State::invalid);
  std::filesystem::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  EXPECT_EQ(configurationFile(file).state, FileReport::State::unreadable) << "and nothing hangs";
}

TEST(Findings, PreferTheAgentsReadingsAndFillInTheOthers) {
  MetricSnapshot own;
  own.samples.set(MetricID::cpuUsage, MetricSample::valid(12, "own", WallTime()));
  own.samples.set(MetricID::fan1RPM, MetricSample::unavailable("none here"));
  AgentReport agent;
  agent.readings = {{MetricID::cpuUsage, Quality::stale, "—", "the agent's"}};
  const auto readings = readingsOf(own, agent, WallTime());
  ASSERT_EQ(readings.size(), 12U) << "every metric of a source, and no quota";
  for (const ReadingReport& reading : readings) {
    if (reading.metric == MetricID::cpuUsage) {
      EXPECT_EQ(reading.source, "the agent's");
    } else if (reading.metric == MetricID::fan1RPM) {
      EXPECT_EQ(reading.source, "none here");
    } else {
      EXPECT_NE(reading.quality, Quality::valid);
    }
  }
  EXPECT_EQ(readingsOf(own, std::nullopt, WallTime()).size(), 12U);
}

TEST(Findings, TakeAnAnswerThatCannotBeReadForOne) {
  Diagnosis diagnosis;
  takeAgentAnswer("no JSON", diagnosis);
  EXPECT_EQ(diagnosis.agent, AgentPresence::garbled);
  EXPECT_FALSE(diagnosis.report);
  AgentReport report;
  report.item.panel = "waybar";
  takeAgentAnswer(encode(report), diagnosis);
  EXPECT_EQ(diagnosis.agent, AgentPresence::answered);
  EXPECT_EQ(diagnosis.item.panel, "waybar");
}

TEST(Findings, KnowTheHomeFolderUnderBothItsNames) {
  const test::TemporaryFolder folder;
  const auto home = folder / "maria";
  const auto link = folder / "link";
  std::filesystem::create_directory(home);
  std::filesystem::create_symlink(home, link);
  EXPECT_EQ(spellingsOf(link), (std::vector<std::string>{link, home}));
  EXPECT_EQ(spellingsOf(home), std::vector<std::string>{home});
  EXPECT_EQ(spellingsOf("/no/such/home"), std::vector<std::string>{"/no/such/home"});
}

}  // namespace
}  // namespace vantora
