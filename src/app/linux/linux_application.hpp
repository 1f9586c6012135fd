// SPDX-License-Identifier: MIT
//
// What the agent and vantora-print share on Linux: the loops, the clock, the machine's
// readings and the user's settings.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "app/app_coordinator.hpp"
#include "platform/linux/autostart_login_item.hpp"
#include "platform/linux/json_user_defaults.hpp"
#include "runtime/one_answer_client.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/uv_child_process.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora {

/// Lives on the main thread and outlives the coordinator that is made from its parts.
class LinuxApplication {
 public:
  /// `configHome` is the user's folder for configurations.
  explicit LinuxApplication(std::filesystem::path configHome);

  [[nodiscard]] UvLoop& loop() { return loop_; }
  [[nodiscard]] const Clock& clock() const { return clock_; }
  [[nodiscard]] ChildProcessLauncher& launcher() { return launcher_; }

  /// The parts of a coordinator without window and browser. Reads the configuration.
  [[nodiscard]] AppParts parts(StatusItem& statusItem, TextEngine& textEngine);

 private:
  [[nodiscard]] TaskQueue& samplingQueue();
  [[nodiscard]] ConversationHost conversationHost();

  const std::filesystem::path configHome_;
  const SystemClock clock_;
  UvLoop loop_;
  std::optional<UvQueueThread> samplingThread_;
  const std::string home_;  // without a trailing separator
  UvChildProcessLauncher launcher_;
  JsonUserDefaults defaults_;
  AutostartLoginItem loginItem_;
};

}  // namespace vantora
