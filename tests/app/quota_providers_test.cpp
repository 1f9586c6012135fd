// SPDX-License-Identifier: MIT
#include "app/quota_providers.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "app/app_world.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/scripted_process.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::FakeUserDefaults;
using test::ScriptedLauncher;
using test::TemporaryFolder;
using test::VirtualTime;

class QuotaProvidersTest : public testing::Test {
 protected:
  QuotaProvidersTest() {
    configuration.codexSettings.emplace().enabled = true;
    configuration.claudeSettings.emplace().enabled = true;
  }

  [[nodiscard]] std::string executable(const std::string& where) const {
    const auto path = folder / where;
    std::filesystem::create_directories(path.parent_path());
    test::writeBytes(path, "");
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    return std::filesystem::canonical(path).string();
  }
  [[nodiscard]] ConversationHost host() { return {*main, launcher, (folder / "Vantora").string()}; }
  [[nodiscard]] std::vector<std::string> startedPrograms() const {
    std::vector<std::string> programs;
    for (const auto& process : launcher.started()) {
      programs.push_back(process->options().executable);
    }
    return programs;
  }

  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> main = time.makeQueue();
  ScriptedLauncher launcher{*main};
  TemporaryFolder folder;
  FakeUserDefaults defaults;
  AppConfiguration configuration =
      test::showing({{MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset},
                     {MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent}});
};

TEST_F(QuotaProvidersTest, AsksTheCodexOfTheFirstPlaceThatHasOne) {
  const std::string found = executable("second/codex");
  const auto provider =
      makeCodexQuotaProvider(host(), time, defaults, {(folder / "first/codex").string(), found});

  provider->configure(configuration, /*sleeping=*/false);
  time.runPosted();

  EXPECT_EQ(startedPrograms(), std::vector{found});
  EXPECT_EQ(provider->executableDescription(), found);
}

TEST_F(QuotaProvidersTest, AsksTheCodexThatTheUserChoseMeanwhile) {
  const std::string found = executable("place/codex");
  const std::string chosen = executable("chosen/codex");
  const auto provider = makeCodexQuotaProvider(host(), time, defaults, {found});
  ASSERT_FALSE(defaults.setText(codexExecutablePathKey, chosen));

  provider->configure(configuration, /*sleeping=*/false);
  time.runPosted();

  EXPECT_EQ(startedPrograms(), std::vector{chosen});
}

TEST_F(QuotaProvidersTest, AsksTheClaudeOfTheFirstPlaceThatHasOne) {
  const std::string found = executable("bin/claude");
  const auto provider =
      makeClaudeQuotaProvider(host(), time, {(folder / "none/claude").string(), found});

  provider->configure(configuration, /*sleeping=*/false);
  time.runPosted();

  EXPECT_EQ(startedPrograms(), std::vector{found});
  EXPECT_EQ(launcher.latest().options().workingDirectory, (folder / "Vantora").string());
}

TEST_F(QuotaProvidersTest, StartsNothingWhereThereIsNoExecutable) {
  const auto codex = makeCodexQuotaProvider(host(), time, defaults, {(folder / "codex").string()});
  const auto claude = makeClaudeQuotaProvider(host(), time, {(folder / "claude").string()});

  codex->configure(configuration, /*sleeping=*/false);
  claude->configure(configuration, /*sleeping=*/false);
  time.runPosted();

  EXPECT_TRUE(launcher.started().empty());
}

}  // namespace
}  // namespace vantora
