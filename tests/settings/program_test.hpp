// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "support/real_processes.hpp"

namespace vantora::test {

/// The real vantora-settings, without a screen, on the other side of real pipes.
class ProgramTest : public testing::Test {
 protected:
  ProgramTest() { ::setenv("QT_QPA_PLATFORM", "offscreen", 1); }
  std::unique_ptr<ChildProcess> start(const ChildProcessOptions& options) {
    ChildProcessEvents events;
    events.onOutput = [this](std::string_view bytes) { output_ += bytes; };
    events.onExit = [this](ChildExit exit) { exit_ = exit; };
    auto child = processes_.launcher().start(options, std::move(events));
    EXPECT_TRUE(child);
    return std::move(child).value();
  }
  std::unique_ptr<ChildProcess> startWith(const char* argument) {
    return start({VANTORA_SETTINGS, {argument}, {}, {}});
  }
  void runUntilLine() {
    processes_.runUntil([this] { return output_.ends_with('\n'); });
  }
  void runUntilExit() {
    processes_.runUntil([this] { return exit_.has_value(); });
  }

  RealProcesses processes_;
  std::string output_;
  std::optional<ChildExit> exit_;
};

}  // namespace vantora::test
