// SPDX-License-Identifier: MIT
//
// What every ChildProcessLauncher does, asked of the real one and of the scripted one.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

#include "process/child_process.hpp"
#include "support/real_processes.hpp"
#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {
namespace {

// A launcher, and a way to let its children live.
class Stage {
 public:
  virtual ~Stage() = default;
  virtual ChildProcessLauncher& launcher() = 0;
  virtual void runUntil(const std::function<bool()>& condition) = 0;
  // Lets everything happen that still can.
  virtual void settle() = 0;
};

class RealStage final : public Stage {
 public:
  ChildProcessLauncher& launcher() override { return processes_.launcher(); }
  void runUntil(const std::function<bool()>& condition) override { processes_.runUntil(condition); }
  void settle() override { processes_.runUntilBackTo(before_); }

 private:
  RealProcesses processes_;
  ProcessCensus before_ = ProcessCensus::take();
};

class ScriptedStage final : public Stage {
 public:
  ScriptedStage() {
    launcher_.onStart = [](ScriptedProcess& child) { play(child); };
  }
  ChildProcessLauncher& launcher() override { return *this->starter_; }
  void runUntil(const std::function<bool()>& condition) override {
    time_.runPosted();
    EXPECT_TRUE(condition());
  }
  void settle() override { time_.runPosted(); }

 private:
  // The helper executable's scenarios.
  static void play(ScriptedProcess& child) {
    const std::string& scenario = child.options().arguments.at(0);
    if (scenario == "echo") {
      child.onInput = [](ScriptedProcess& self, std::string_view bytes) {
        self.output(std::string(bytes));
      };
      child.onInputEnd = [](ScriptedProcess& self) {
        self.endOutput();
        self.exit();
      };
    } else if (scenario == "exit") {
      child.output("bye");
      child.endOutput();
      child.exit({std::stoi(child.options().arguments.at(1)), 0});
    } else if (scenario == "die") {
      child.endOutput();
      child.exit({0, SIGUSR1});
    } else if (scenario == "complain") {
      child.errorOutput(child.options().arguments.at(1) + "\n");
      child.endOutput();
      child.exit({1, 0});
    } else if (scenario == "close-input") {
      child.closeInput();
      child.output("closed\n");
    } else if (scenario == "close-output") {
      child.endOutput();
    } else if (scenario == "hang") {
      child.output("ready\n");
    }
  }

  // As the real launcher, for the one thing that a script cannot play.
  class Starter final : public ChildProcessLauncher {
   public:
    explicit Starter(ScriptedLauncher& scripted) : scripted_(scripted) {}
    Result<std::unique_ptr<ChildProcess>> start(const ChildProcessOptions& options,
                                                ChildProcessEvents events) override {
      const bool isMissing = options.executable.starts_with("/nowhere/");
      scripted_.failStarts(isMissing ? std::optional(Fault::absent()) : std::nullopt);
      return scripted_.start(options, std::move(events));
    }

   private:
    ScriptedLauncher& scripted_;
  };

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  ScriptedLauncher launcher_{*queue_};
  std::unique_ptr<Starter> starter_ = std::make_unique<Starter>(launcher_);
};

struct Kind {
  const char* name;
  std::unique_ptr<Stage> (*make)();
};

class ChildProcessContract : public testing::TestWithParam<Kind> {
 protected:
  std::unique_ptr<ChildProcess> start(const std::string& scenario,
                                      std::vector<std::string> arguments = {}) {
    auto result = launcher().start(helperOptions(scenario, std::move(arguments)), events());
    EXPECT_TRUE(result.hasValue());
    return result ? std::move(result).value() : nullptr;
  }

  ChildProcessEvents events() {
    return {[this](std::string_view bytes) { output += bytes; }, [this] { ++outputEnds; },
            [this](std::string_view bytes) { errorOutput += bytes; },
            [this](ChildExit exit) {
              ++exits;
              lastExit = exit;
              outputAtExit = output;
            },
            [this] { ++inputLosses; }};
  }

  ChildProcessLauncher& launcher() { return stage->launcher(); }
  void runUntil(const std::function<bool()>& condition) { stage->runUntil(condition); }
  void runUntilOver() {
    runUntil([this] { return exits > 0 && outputEnds > 0; });
  }

  std::unique_ptr<Stage> stage = GetParam().make();
  std::string output;
  std::string outputAtExit;
  std::string errorOutput;
  int outputEnds = 0;
  int exits = 0;
  int inputLosses = 0;
  ChildExit lastExit;
};

TEST_P(ChildProcessContract, AnswersThatThereIsNoSuchExecutable) {
  const auto result = launcher().start({"/nowhere/codex", {}, {}, {}}, events());
  ASSERT_FALSE(result.hasValue());
  EXPECT_EQ(result.fault().kind, Fault::Kind::absent);
  stage->settle();
  EXPECT_EQ(exits + outputEnds + inputLosses, 0);
}

TEST_P(ChildProcessContract, GivesTheChildANumber) {
  const auto child = start("hang");
  EXPECT_GT(child->id(), 0);
}

TEST_P(ChildProcessContract, PassesBytesBothWays) {
  const auto child = start("echo");
  EXPECT_TRUE(child->write("one\ntw"));
  EXPECT_TRUE(child->write("o\n"));
  runUntil([this] { return output.size() >= 8; });
  EXPECT_EQ(output, "one\ntwo\n");
  EXPECT_EQ(exits + outputEnds, 0);
}

TEST_P(ChildProcessContract, NeverDeliversInsideACall) {
  const auto child = start("exit", {"0"});
  EXPECT_TRUE(output.empty());
  EXPECT_EQ(exits + outputEnds, 0);
  runUntilOver();
}

TEST_P(ChildProcessContract, DeliversTheOutputBeforeTheExit) {
  const auto child = start("exit", {"3"});
  runUntilOver();
  EXPECT_EQ(outputAtExit, "bye");
  EXPECT_EQ(lastExit, (ChildExit{3, 0}));
}

TEST_P(ChildProcessContract, ReportsEachEndOnce) {
  {
    const auto child = start("exit", {"0"});
    runUntilOver();
    EXPECT_FALSE(child->write("too late"));
  }
  stage->settle();
  EXPECT_EQ(exits, 1);
  EXPECT_EQ(outputEnds, 1);
}

TEST_P(ChildProcessContract, ReportsTheSignalThatEndedTheChild) {
  const auto child = start("die");
  runUntilOver();
  EXPECT_EQ(lastExit, (ChildExit{0, SIGUSR1}));
}

TEST_P(ChildProcessContract, KeepsErrorOutputApart) {
  const auto child = start("complain", {"Please run /login"});
  runUntil([this] { return exits > 0 && outputEnds > 0 && !errorOutput.empty(); });
  EXPECT_EQ(errorOutput, "Please run /login\n");
  EXPECT_EQ(output, "");
}

TEST_P(ChildProcessContract, EndsTheChildsInputWhenAsked) {
  const auto child = start("echo");
  EXPECT_TRUE(child->write("last\n"));
  child->closeInput();
  EXPECT_FALSE(child->write("more\n"));
  runUntilOver();
  EXPECT_EQ(output, "last\n");
  EXPECT_EQ(lastExit, ChildExit{});
}

TEST_P(ChildProcessContract, RefusesAWriteToAChildThatClosedItsInput) {
  const auto child = start("close-input");
  runUntil([this] { return output == "closed\n"; });
  EXPECT_FALSE(child->write("anyone?\n"));
  EXPECT_FALSE(child->write("anyone?\n"));
  EXPECT_EQ(exits, 0);
}

TEST_P(ChildProcessContract, ReportsTheEndOfTheOutputWhileTheChildLives) {
  const auto child = start("close-output");
  runUntil([this] { return outputEnds == 1; });
  EXPECT_EQ(exits, 0);
}

TEST_P(ChildProcessContract, FallsSilentOnceTerminated) {
  {
    const auto child = start("echo");
    EXPECT_TRUE(child->write("never seen\n"));
    child->terminate();
    EXPECT_FALSE(child->write("more"));
    child->terminate();
    stage->settle();
  }
  stage->settle();
  EXPECT_EQ(output, "");
  EXPECT_EQ(exits + outputEnds + inputLosses, 0);
}

TEST_P(ChildProcessContract, FallsSilentOnceDestroyed) {
  start("exit", {"0"}).reset();
  stage->settle();
  EXPECT_EQ(output, "");
  EXPECT_EQ(exits + outputEnds, 0);
}

TEST_P(ChildProcessContract, MayBeDestroyedByItsOwnEvents) {
  std::unique_ptr<ChildProcess> child;
  int calls = 0;
  const auto drop = [&] {
    ++calls;
    child.reset();
  };
  ChildProcessEvents dropping;
  dropping.onOutput = [&](std::string_view) { drop(); };
  dropping.onOutputEnd = drop;
  dropping.onExit = [&](ChildExit) { drop(); };
  auto result = launcher().start(helperOptions("exit", {"0"}), dropping);
  child = std::move(result).value();
  runUntil([&] { return calls > 0; });
  stage->settle();
  EXPECT_EQ(calls, 1);

  dropping.onOutput = nullptr;
  auto second = launcher().start(helperOptions("exit", {"0"}), dropping);
  child = std::move(second).value();
  runUntil([&] { return calls > 1; });
  stage->settle();
  EXPECT_EQ(calls, 2);
}

TEST_P(ChildProcessContract, AcceptsChildrenWithoutListeners) {
  {
    auto result = launcher().start(helperOptions("complain", {"nobody"}), {});
    ASSERT_TRUE(result.hasValue());
    stage->runUntil([] { return true; });
    EXPECT_TRUE(std::move(result).value() != nullptr);
  }
  stage->settle();
}

TEST_P(ChildProcessContract, RunsTwoChildrenApart) {
  std::string other;
  ChildProcessEvents events;
  events.onOutput = [&](std::string_view bytes) { other += bytes; };
  const auto first = start("echo");
  auto result = launcher().start(helperOptions("echo"), events);
  const auto second = std::move(result).value();
  EXPECT_NE(first->id(), second->id());
  EXPECT_TRUE(first->write("a"));
  EXPECT_TRUE(second->write("b"));
  runUntil([&] { return !output.empty() && !other.empty(); });
  EXPECT_EQ(output, "a");
  EXPECT_EQ(other, "b");
}

INSTANTIATE_TEST_SUITE_P(Launchers, ChildProcessContract,
                         testing::Values(Kind{"Libuv",
                                              []() -> std::unique_ptr<Stage> {
                                                return std::make_unique<RealStage>();
                                              }},
                                         Kind{"Scripted",
                                              []() -> std::unique_ptr<Stage> {
                                                return std::make_unique<ScriptedStage>();
                                              }}),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace vantora::test
