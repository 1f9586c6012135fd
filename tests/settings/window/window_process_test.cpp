// SPDX-License-Identifier: MIT
//
// The real window's program, without a screen, on the other side of real pipes.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "runtime/system_clock.hpp"
#include "settings/agent/settings_process.hpp"
#include "settings/program_test.hpp"
#include "support/fake_settings_ports.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_worker.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using testing::IsEmpty;

class WindowProcessTest : public test::ProgramTest {
 protected:
  WindowProcessTest() {
    // No desktop's theme, whichever plug-ins are installed: the portal's leaks its question
    // in a program that ends before the answer, which the leak sanitizer counts as ours.
    ::setenv("QT_QPA_PLATFORMTHEME", "none", 1);
    ::setenv("XDG_CONFIG_HOME", folder_.path().c_str(), 1);
  }
  // With the test as its agent.
  std::unique_ptr<ChildProcess> startWindow() {
    auto child = start({VANTORA_SETTINGS, {}, {}, {}});
    runUntilLine();
    const auto first = readWindowLine(output_);
    EXPECT_TRUE(first && std::holds_alternative<Ready>(*first)) << output_;
    output_.clear();
    return child;
  }

  test::TemporaryFolder folder_;
};

TEST_F(WindowProcessTest, AnswersTheStateAndEndsWithItsInput) {
  const auto child = startWindow();
  ASSERT_TRUE(child->write(stateLine({}, {41, 0, allWindowFields})));
  runUntilLine();
  const auto answer = readWindowLine(output_);
  ASSERT_TRUE(answer && std::holds_alternative<Seen>(*answer)) << output_;
  EXPECT_EQ(std::get<Seen>(*answer).sequence, 41U);
  child->closeInput();
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
  EXPECT_TRUE(std::filesystem::exists(folder_ / "Vantora/settings-window.ini"));
}

TEST_F(WindowProcessTest, OpensWithTheTabWhereTheLastOneEnded) {
  std::filesystem::create_directories(folder_ / "Vantora");
  test::writeBytes(folder_ / "Vantora/settings-window.ini", "[General]\ntab=4\n");
  const auto child = startWindow();
  ASSERT_TRUE(child->write(stateLine({}, {1, 0, allWindowFields})));
  runUntilLine();
  child->closeInput();
  runUntilExit();
  const std::string kept = test::readBytes(folder_ / "Vantora/settings-window.ini");
  EXPECT_THAT(kept, testing::HasSubstr("tab=4\n"));
  EXPECT_THAT(kept, testing::HasSubstr("geometry="));
}

TEST_F(WindowProcessTest, EndsWithItsInputBeforeItEverShowedAnything) {
  const auto child = startWindow();
  child->closeInput();
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
}

// The first line is written before the event loop runs, into a pipe that has no reader.
TEST_F(WindowProcessTest, EndsWhenItsOutputIsClosedAtItsStart) {
  const std::string intoABrokenPipe =
      "mkfifo pipe && { exec 3<>pipe; exec 4>pipe; exec 3>&-; exec \"$0\" >&4 4>&-; }";
  const auto child =
      start({"/bin/sh", {"-c", intoABrokenPipe, VANTORA_SETTINGS}, {}, folder_.path().string()});
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
}

TEST_F(WindowProcessTest, EndsWithItsInputWhereItHasNoOutputAtAll) {
  const auto child = start({"/bin/sh", {"-c", "exec \"$0\" >&-", VANTORA_SETTINGS}, {}, {}});
  child->closeInput();
  runUntilExit();
  EXPECT_EQ(exit_, ChildExit{});
}

TEST_F(WindowProcessTest, EndsWithAFaultOverALineThatIsNoMessage) {
  const auto child = startWindow();
  ASSERT_TRUE(child->write("garbage\n"));
  runUntilExit();
  EXPECT_EQ(exit_, (ChildExit{1, 0}));
}

TEST_F(WindowProcessTest, OpensForTheAgentAndLeavesNothingBehind) {
  const test::ProcessCensus before = test::ProcessCensus::take();
  {
    const SystemClock clock;
    test::FakeLoginItem loginItem;
    test::FakeUserDefaults defaults;
    test::VirtualWorker worker(processes_.queue());
    SettingsModel model(processes_.queue(), worker, ConfigurationStore(folder_.path()), loginItem,
                        defaults);
    int drawings = 0;
    SettingsProcess::Parts parts{processes_.queue(),
                                 clock,
                                 processes_.launcher(),
                                 model,
                                 VANTORA_SETTINGS,
                                 [&drawings](const StatusImage&, double) {
                                   ++drawings;
                                   return AlphaBitmap(drawings, 1);
                                 },
                                 [] { return std::string("codex"); },
                                 [] { return std::string("claude"); }};
    SettingsProcess process(std::move(parts));
    std::vector<std::string> failures;
    process.onFailure = [&](const std::string& message) { failures.push_back(message); };
    process.show("");
    // A picture, and the same enlarged, is asked for once the last one was answered.
    for (int round = 1; round <= 3; ++round) {
      processes_.runUntil([&] { return drawings == 2 * round; });
      process.showStatus({});
    }
    EXPECT_TRUE(process.isVisible());
    EXPECT_THAT(failures, IsEmpty());
    process.close();
  }
  processes_.runUntilBackTo(before);
}

}  // namespace
}  // namespace vantora
