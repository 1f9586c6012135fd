// SPDX-License-Identifier: MIT
//
// What the agent and vantora-print share on macOS: the main thread's queue and loop, the
// clock, the machine's readings and the user's settings.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>

#include "app/app_coordinator.hpp"
#include "platform/macos/app/dispatch_task_queue.hpp"
#include "platform/macos/app/embedded_uv_loop.hpp"
#include "platform/macos/app/unthrottled_queue.hpp"
#include "platform/macos/readings/io_power_sources.hpp"
#include "platform/macos/settings/app_service_login_item.hpp"
#include "platform/macos/settings/cf_user_defaults.hpp"
#include "process/uv_child_process.hpp"
#include "quota/one_answer_client.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/termination_signals.hpp"
#include "runtime/worker.hpp"

namespace vantora {

/// Lives on the main thread and outlives the coordinator that is made from its parts.
class MacOSApplication {
 public:
  /// `applicationSupport` is the user's folder for configurations; `end` is called as a
  /// task of the main queue when a signal or the user asks for the program's end.
  MacOSApplication(std::filesystem::path applicationSupport, std::function<void()> end);

  [[nodiscard]] TaskQueue& mainQueue() { return mainQueue_; }
  [[nodiscard]] uv_loop_t& mainLoop() { return mainLoop_.raw(); }
  [[nodiscard]] const Clock& clock() const { return clock_; }
  [[nodiscard]] ChildProcessLauncher& launcher() { return launcher_; }

  /// The parts of a coordinator without window and browser. Reads the configuration.
  [[nodiscard]] AppParts parts(StatusItem& statusItem, TextEngine& textEngine);

  /// What a diagnosis looks at. All of it lives as long as the application.
  struct Insides {
    TaskQueue& mainQueue;
    const Clock& clock;
    ChildProcessLauncher& launcher;
    UserDefaults& defaults;
    LoginItem& loginItem;
    const std::filesystem::path& applicationSupport;
    const std::string& home;  ///< Without a trailing separator.
  };
  [[nodiscard]] Insides insides() {
    return {mainQueue_, clock_, launcher_, defaults_, loginItem_, applicationSupport_, home_};
  }
  /// Where the readings come from.
  [[nodiscard]] SamplingSources samplingSources();

 private:
  [[nodiscard]] ConversationHost conversationHost();

  const std::filesystem::path applicationSupport_;
  const std::function<void()> end_;
  const std::string home_;  // without a trailing separator
  const SystemClock clock_;
  DispatchMainQueue mainQueue_;
  EmbeddedUvLoop mainLoop_;
  // Posted: the end destroys the loop that the signal came through.
  TerminationSignals signals_{mainLoop_.raw(), [this] { mainQueue_.post(end_); }};
  DispatchSerialQueue samplingQueue_{std::string(SamplingCoordinator::queueLabel)};
  UnthrottledQueue samplingTimers_{samplingQueue_};
  IOPowerSources powerSources_;
  UvChildProcessLauncher launcher_;
  CFUserDefaults defaults_;
  AppServiceLoginItem loginItem_;
  ThreadWorker fileWorker_{mainQueue_};  // uses the two above
};

}  // namespace vantora
