// SPDX-License-Identifier: MIT
//
// What real children do that scripted ones cannot, and what is left of them: nothing.
#include "process/uv_child_process.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <string>

#include "runtime/thread_hints.hpp"
#include "runtime/unique_fd.hpp"
#include "support/live_memory.hpp"
#include "support/real_processes.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::HelperFolder;
using test::helperOptions;
using test::isRunning;
using test::ProcessCensus;
using test::RealProcesses;
using test::VirtualTime;

class UvChildProcessTest : public testing::Test {
 protected:
  // Without a look at the children: only that there is none afterwards counts.
  void TearDown() override {
    processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  }

  std::unique_ptr<ChildProcess> start(const std::string& scenario,
                                      std::vector<std::string> arguments = {}) {
    return start(helperOptions(scenario, std::move(arguments)));
  }
  std::unique_ptr<ChildProcess> start(const ChildProcessOptions& options) {
    ChildProcessEvents events;
    events.onOutput = [this](std::string_view bytes) { output += bytes; };
    events.onOutputEnd = [this] { hasOutputEnded = true; };
    events.onErrorOutput = [this](std::string_view bytes) { errorBytes += bytes.size(); };
    events.onExit = [this](ChildExit exit) { lastExit = exit; };
    events.onInputLost = [this] { isInputLost = true; };
    auto result = processes.launcher().start(options, std::move(events));
    EXPECT_TRUE(result.hasValue());
    return std::move(result).value();
  }
  void runUntil(const std::function<bool()>& condition) { processes.runUntil(condition); }
  void runUntilReady() {
    runUntil([this] { return output.ends_with('\n'); });
  }
  // What the children left in their group may still be there, and the guard with it.
  void runUntilNoChildIsLeft() {
    runUntil([] { return !ProcessCensus::take().hasChildren; });
  }
  // The grandchild says its number.
  int runUntilGrandchild() {
    runUntilReady();
    return std::atoi(output.c_str());
  }

  VirtualTime time;
  std::unique_ptr<test::VirtualQueue> timers = time.makeQueue();
  RealProcesses processes{timers.get()};
  ProcessCensus before = ProcessCensus::take();
  std::string output;
  std::size_t errorBytes = 0;
  bool hasOutputEnded = false;
  bool isInputLost = false;
  std::optional<ChildExit> lastExit;
};

TEST_F(UvChildProcessTest, LeavesNothingOfAChildThatEnded) {
  const auto child = start("exit", {"0"});
  runUntil([this] { return lastExit.has_value() && hasOutputEnded; });
}

TEST_F(UvChildProcessTest, LeavesNothingOfAChildThatWasTerminated) {
  start("hang");
  processes.runUntilBackTo(before);
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(UvChildProcessTest, HoldsNoBufferBetweenTwoChildren) {
  const std::size_t heldBefore = test::liveBytes();
  auto child = start("echo");
  EXPECT_TRUE(child->write("hello\n"));
  runUntilReady();
  child.reset();
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  // A read buffer has 65,536.
  EXPECT_LT(test::liveBytes(), heldBefore + 16'384);
}

TEST_F(UvChildProcessTest, KillsAChildThatIgnoresTerminationAfterTheGrace) {
  auto child = start("ignore-termination");
  const int id = child->id();
  runUntilReady();
  child->terminate();
  time.advance(UvChildProcessLauncher::terminationGrace - Seconds{0.001});
  processes.runReady();
  EXPECT_TRUE(isRunning(id));
  time.advance(Seconds{0.001});
  processes.runUntilBackTo(before);
  EXPECT_FALSE(isRunning(id));
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(UvChildProcessTest, StartsTheNextChildWhileOneIgnoresTermination) {
  start("ignore-termination").reset();
  const auto next = start("echo");
  EXPECT_TRUE(next->write("hello\n"));
  runUntilReady();
  EXPECT_EQ(output, "hello\n");
  time.advance(UvChildProcessLauncher::terminationGrace);
}

TEST_F(UvChildProcessTest, ReportsTheExitThoughAGrandchildKeepsThePipesOpen) {
  auto child = start("leave-a-grandchild");
  const int grandchild = runUntilGrandchild();
  runUntil([this] { return lastExit.has_value(); });
  EXPECT_FALSE(hasOutputEnded);
  EXPECT_TRUE(isRunning(grandchild));
  child.reset();
  runUntil([&] { return !isRunning(grandchild); });
  time.advance(UvChildProcessLauncher::terminationGrace);
}

TEST_F(UvChildProcessTest, EndsTheProgramTogetherWithItsWrapper) {
  auto child = start("wrap");
  const int grandchild = runUntilGrandchild();
  child->terminate();
  runUntilNoChildIsLeft();
  runUntil([&] { return !isRunning(grandchild); });
  time.advance(UvChildProcessLauncher::terminationGrace);
}

TEST_F(UvChildProcessTest, KillsAProgramThatIgnoresTerminationThoughItsWrapperEnded) {
  auto child = start("wrap", {"stubborn"});
  const int grandchild = runUntilGrandchild();
  child->terminate();
  runUntilNoChildIsLeft();
  time.advance(UvChildProcessLauncher::terminationGrace - Seconds{0.001});
  EXPECT_TRUE(isRunning(grandchild));
  time.advance(Seconds{0.001});
  runUntil([&] { return !isRunning(grandchild); });
  EXPECT_EQ(time.pendingCount(), 0U);
}

TEST_F(UvChildProcessTest, KillsAGrandchildThatIgnoresTerminationAfterTheGrace) {
  auto child = start("leave-a-grandchild", {"stubborn"});
  const int grandchild = runUntilGrandchild();
  EXPECT_TRUE(child->write("x"));
  runUntil([this] { return lastExit.has_value(); });
  child->terminate();
  time.advance(UvChildProcessLauncher::terminationGrace - Seconds{0.001});
  EXPECT_TRUE(isRunning(grandchild));
  time.advance(Seconds{0.001});
  // The last look was 0.1 s x 20 after the request.
  runUntil([&] { return !isRunning(grandchild); });
  EXPECT_EQ(time.pendingCount(), 0U);
}

// The group's number may be another's by then, which the guard must not terminate.
TEST_F(UvChildProcessTest, KeepsNoGuardOfAGroupThatWasKilledThoughItsOwnerKeepsTheChild) {
  const auto child = start("wrap", {"stubborn"});
  runUntilGrandchild();
  child->terminate();
  runUntilNoChildIsLeft();
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
}

TEST_F(UvChildProcessTest, KeepsNoGuardOfAGroupThatEndedBeforeTheChildIsTerminated) {
  const auto child = start("leave-a-grandchild");
  const int grandchild = runUntilGrandchild();
  runUntil([this] { return lastExit.has_value(); });
  kill(grandchild, SIGKILL);
  runUntil([&] { return !isRunning(grandchild); });
  child->terminate();
  // It may still have to be reaped.
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
}

TEST_F(UvChildProcessTest, DrainsErrorOutputWithoutAListener) {
  const auto child = start("huge-error");
  runUntilReady();
  EXPECT_EQ(output, "done\n");
  EXPECT_EQ(errorBytes, 64U * 65'536U);
}

TEST_F(UvChildProcessTest, StopsAFloodInItsMiddle) {
  auto child = start("flood");
  runUntil([this] { return output.size() > 1'000'000; });
  child->terminate();
  const std::size_t size = output.size();
  processes.runUntilBackTo(before, [this] { time.advance(RealProcesses::turn); });
  EXPECT_EQ(output.size(), size);
}

TEST_F(UvChildProcessTest, DeliversMoreThanTheSystemTakesAtOnce) {
  const auto child = start("echo");
  const std::string block(3'000'000, 'b');
  EXPECT_TRUE(child->write(block));
  EXPECT_TRUE(child->write("end\n"));
  child->closeInput();
  EXPECT_FALSE(child->write("more"));
  runUntil([this] { return lastExit.has_value() && hasOutputEnded; });
  EXPECT_TRUE(output == block + "end\n");
  EXPECT_EQ(lastExit, ChildExit{});
}

TEST_F(UvChildProcessTest, ReportsThatAcceptedBytesCanNoLongerBeDelivered) {
  const auto child = start("silent");
  EXPECT_TRUE(child->write(std::string(3'000'000, 'b')));
  EXPECT_FALSE(isInputLost);
  kill(child->id(), SIGKILL);
  runUntil([this] { return isInputLost && lastExit.has_value(); });
  EXPECT_FALSE(child->write("more"));
}

TEST_F(UvChildProcessTest, SurvivesAWriteToAChildThatDied) {
  struct sigaction handling {};
  ASSERT_EQ(sigaction(SIGPIPE, nullptr, &handling), 0);
  ASSERT_EQ(handling.sa_handler, SIG_DFL);
  const auto child = start("exit", {"0"});
  runUntil([this] { return lastExit.has_value(); });
  EXPECT_FALSE(child->write("anyone?\n"));
  ASSERT_EQ(sigaction(SIGPIPE, nullptr, &handling), 0);
  EXPECT_EQ(handling.sa_handler, SIG_DFL);
}

TEST_F(UvChildProcessTest, GivesTheChildAPlaceOfItsOwn) {
  const HelperFolder home;
  const std::string folder = home.path() + "/config/Vantora";
  // As a program that started this one may have left it.
  const UniqueFd inherited(open("/dev/null", O_RDONLY));
  setTimerSlackOfThisThread(Seconds{0.1});
  ChildProcessOptions options =
      helperOptions("report", {"VANTORA_TEST_INHERITED", "VANTORA_TEST_ADDED", "HOME"});
  options.environmentChanges = {{"VANTORA_TEST_ADDED", "1"}, {"HOME", "/nowhere"}};
  options.workingDirectory = folder;
  setenv("VANTORA_TEST_INHERITED", "yes", 1);
  const auto other = start("silent");  // its descriptors are nothing to the next
  const auto child = start(options);
  unsetenv("VANTORA_TEST_INHERITED");
  setTimerSlackOfThisThread(Seconds{0});
  runUntil([this] { return lastExit.has_value() && output.find("pipe=") != std::string::npos; });

  std::map<std::string, std::string> report;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    report[line.substr(0, line.find('='))] = line.substr(line.find('=') + 1);
  }
  EXPECT_EQ(report["folder"], folder);
  EXPECT_EQ(report["VANTORA_TEST_INHERITED"], "yes");
  EXPECT_EQ(report["VANTORA_TEST_ADDED"], "1");
  EXPECT_EQ(report["HOME"], "/nowhere");
  EXPECT_EQ(report["leads"], "1");
  EXPECT_EQ(report["slack"], "50000");
  EXPECT_EQ(report["extra"], "0");
  EXPECT_EQ(report["pipe"], "default");
}

TEST_F(UvChildProcessTest, AnswersThatAFileIsNotExecutable) {
  const HelperFolder folder;
  const std::string path = folder.path() + "/codex";
  std::ofstream(path) << "no program";
  const auto result = processes.launcher().start({path, {}, {}, {}}, {});
  ASSERT_FALSE(result.hasValue());
  EXPECT_EQ(result.fault().kind, Fault::Kind::failed);
}

TEST_F(UvChildProcessTest, AnswersThatTheWorkingFolderCannotBeEntered) {
  ChildProcessOptions options = helperOptions("hang");
  options.workingDirectory = "/proc/vantora/folder";
  EXPECT_FALSE(processes.launcher().start(options, {}).hasValue());
}

TEST_F(UvChildProcessTest, AnswersThatNoDescriptorIsLeft) {
  rlimit limit{};
  ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
  // Sanitizers take a descriptor for their first look at a type: they look before the
  // limit is set.
  const auto isStarted = [this] {
    return processes.launcher().start(helperOptions("hang"), {}).hasValue();
  };
  ASSERT_TRUE(isStarted());
  processes.runUntilBackTo(before);
  const UniqueFd firstFree(fcntl(0, F_DUPFD_CLOEXEC, 0));
  for (const int room : {0, 1, 2, 4, 6}) {
    const rlimit tight{static_cast<rlim_t>(firstFree.get() + 1 + room), limit.rlim_max};
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);
    const bool result = isStarted();
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    EXPECT_FALSE(result) << room;
    processes.runReady();
  }
}

// A program of its own that starts the helper's scenario and prints the grandchild's number.
class OtherProgram {
 public:
  explicit OtherProgram(const ChildProcessOptions& options) {
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    program_ = fork();
    if (program_ == 0) {
      setTimerSlackOfThisThread(Seconds{0.25});
      RealProcesses processes;
      ChildProcessEvents events;
      events.onOutput = [&ends](std::string_view bytes) {
        (void)!::write(ends[1], bytes.data(), bytes.size());
      };
      const auto child = processes.launcher().start(options, std::move(events));
      while (child.hasValue()) {
        processes.runUntil([] { return false; });
      }
      _exit(1);
    }
    close(ends[1]);
    const UniqueFd output(ends[0]);
    char text[32] = "";
    EXPECT_GT(read(output.get(), text, sizeof text - 1), 0);
    grandchild_ = std::atoi(text);
  }
  ~OtherProgram() { end(); }
  OtherProgram(const OtherProgram&) = delete;
  OtherProgram& operator=(const OtherProgram&) = delete;

  [[nodiscard]] int grandchild() const { return grandchild_; }
  void end() {
    if (program_ > 0) {
      kill(program_, SIGKILL);
      waitpid(program_, nullptr, 0);
      program_ = 0;
    }
  }

 private:
  pid_t program_ = 0;
  int grandchild_ = 0;
};

TEST_F(UvChildProcessTest, LeavesNothingWhenTheProgramIsKilled) {
  OtherProgram polite(helperOptions("wrap"));
  OtherProgram stubborn(helperOptions("wrap", {"stubborn"}));
  EXPECT_TRUE(isRunning(polite.grandchild()));
  EXPECT_TRUE(isRunning(stubborn.grandchild()));
  polite.end();
  runUntil([&] { return !isRunning(polite.grandchild()); });
  EXPECT_TRUE(isRunning(stubborn.grandchild()));
  stubborn.end();
  runUntil([&] { return !isRunning(stubborn.grandchild()); });
}

TEST_F(UvChildProcessTest, EndsEveryChildWithTheProgram) {
  const auto polite = start("hang");
  const auto stubborn = start("ignore-termination");
  runUntilReady();
  runUntil([this] { return output == "ready\nready\n"; });
  const int politeId = polite->id();
  const int stubbornId = stubborn->id();
  processes.destroyLauncher();
  EXPECT_FALSE(isRunning(politeId));
  EXPECT_FALSE(isRunning(stubbornId));
  EXPECT_EQ(time.pendingCount(), 0U);
  // Its owner may outlive it.
  EXPECT_FALSE(stubborn->write("anyone?"));
}

TEST_F(UvChildProcessTest, FreesAChildWhoseGroupIsStillWatchedAtTheProgramsEnd) {
  const auto token = std::make_shared<int>();
  ChildProcessEvents events;
  events.onOutput = [this, token](std::string_view bytes) { output += bytes; };
  events.onExit = [this](ChildExit exit) { lastExit = exit; };
  auto child = processes.launcher()
                   .start(helperOptions("leave-a-grandchild", {"stubborn"}), std::move(events))
                   .value();
  runUntilGrandchild();
  EXPECT_TRUE(child->write("x"));
  runUntil([this] { return lastExit.has_value(); });
  child.reset();
  // Its handles are closed; only its group keeps it.
  processes.runReady();
  processes.runReady();
  EXPECT_EQ(token.use_count(), 2);
  processes.destroyLauncher();
  EXPECT_EQ(token.use_count(), 1);
}

}  // namespace
}  // namespace vantora
