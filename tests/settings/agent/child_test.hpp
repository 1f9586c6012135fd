// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/scripted_process.hpp"
#include "support/virtual_time.hpp"

namespace vantora::test {

/// An agent's end of a conversation with a child that the test plays.
class ChildTest : public testing::Test {
 protected:
  ScriptedProcess& child() { return launcher_.latest(); }
  void sayBytes(std::string bytes) {
    child().output(std::move(bytes));
    time_.runPosted();
  }
  void exit(ChildExit exit = {}) {
    child().exit(exit);
    time_.runPosted();
  }

  VirtualTime time_;
  std::unique_ptr<VirtualQueue> queue_ = time_.makeQueue();
  ScriptedLauncher launcher_{*queue_};
  std::vector<std::string> failures_;
};

}  // namespace vantora::test
