// SPDX-License-Identifier: MIT
//
// What the agent and vantora-print share on Linux: the loops, the clock, the machine's
// readings and the user's settings.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "app/app_coordinator.hpp"
#include "platform/linux/desktop/autostart_login_item.hpp"
#include "platform/linux/desktop/json_user_defaults.hpp"
#include "platform/linux/driver_queue/driver_queue.hpp"
#include "process/uv_child_process.hpp"
#include "quota/one_answer_client.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/uv_loop.hpp"
#include "runtime/work_thread.hpp"
#include "runtime/worker.hpp"

namespace vantora {

/// Lives on the main thread and outlives the coordinator that is made from its parts.
class LinuxApplication {
 public:
  /// `configHome` is the user's folder for configurations.
  explicit LinuxApplication(std::filesystem::path configHome);

  [[nodiscard]] UvLoop& loop() { return loop_; }
  [[nodiscard]] const Clock& clock() const { return clock_; }
  [[nodiscard]] ChildProcessLauncher& launcher() { return *launcher_; }

  /// The parts of a coordinator without window and browser. Reads the configuration.
  [[nodiscard]] AppParts parts(StatusItem& statusItem, TextEngine& textEngine);

  /// What a diagnosis looks at. All of it lives as long as the application.
  struct Insides {
    UvLoop& loop;
    const Clock& clock;
    ChildProcessLauncher& launcher;
    UserDefaults& defaults;
    LoginItem& loginItem;
    WorkThread& linkThread;
    WorkThread& batteryThread;
    WorkThread& sensorThread;
    Worker& fileWorker;
    const std::filesystem::path& configHome;
    const std::string& home;  ///< Without a trailing separator; empty for the root.
  };
  [[nodiscard]] Insides insides();
  /// The stored configuration, or that of a first start.
  [[nodiscard]] ConfigurationStore configurationStore() const;

  /// The last act of the program, once everything that was made from the parts is gone: ends
  /// the children, then the threads, and returns `status`. A thread that has not ended within
  /// a second, because a driver or a disk never answers it, is left behind: the process then
  /// exits with `status` here.
  [[nodiscard]] int end(int status);

 private:
  [[nodiscard]] SamplingSources samplingSources(DriverCalls& calls) const;
  [[nodiscard]] bool endSamplingBy(std::chrono::steady_clock::time_point deadline);
  [[nodiscard]] ConversationHost conversationHost();

  const std::filesystem::path configHome_;
  const SystemClock clock_;
  UvLoop loop_;
  std::optional<DriverQueue> samplingQueue_;  // from parts() on
  // Of a diagnosis:
  WorkThread linkThread_{"local.vantora.links"};
  WorkThread batteryThread_{"local.vantora.battery"};
  WorkThread sensorThread_{"local.vantora.sensors"};
  const std::string home_;  // without a trailing separator
  std::optional<UvChildProcessLauncher> launcher_;
  JsonUserDefaults defaults_;
  AutostartLoginItem loginItem_;
  ThreadWorker fileWorker_{loop_.queue()};  // uses the two above
};

}  // namespace vantora
