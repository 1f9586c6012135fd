// SPDX-License-Identifier: MIT
//
// A command-line assistant on this machine, and its version: from the files around it, or else
// by the one question that asks no service, `--version`.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "app/diagnosis/diagnosis.hpp"
#include "process/child_process.hpp"
#include "quota/assistant_executable.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// What can be found out without running it. `selected` is the path that the user chose.
[[nodiscard, gnu::cold]] AssistantReport findAssistant(std::string name,
                                                       const std::optional<std::string>& selected,
                                                       std::span<const std::string> places);

/// The version that the package around the executable, or a folder named after it, tells.
[[nodiscard, gnu::cold]] std::optional<std::string> packagedVersion(const std::string& path);

/// The first version number in the text: "0.63.0" of "codex-cli 0.63.0". At most 40 characters.
[[nodiscard]] std::optional<std::string> versionIn(std::string_view text);

/// One `--version`. Lives on the launcher's thread.
class VersionQuestion {
 public:
  static constexpr Seconds timeout{3};

  /// Starts the child; destroying the question ends it. `done` comes once, as a task of the
  /// queue: nothing when it cannot be started, says no version or takes longer than `timeout`.
  VersionQuestion(ChildProcessLauncher& launcher, TaskQueue& queue,
                  const AssistantExecutable& executable,
                  std::function<void(std::optional<std::string>)> done);
  VersionQuestion(const VersionQuestion&) = delete;
  VersionQuestion& operator=(const VersionQuestion&) = delete;

 private:
  void finish();

  std::function<void(std::optional<std::string>)> done_;
  std::string output_;
  TimerHandle limit_;
  std::unique_ptr<ChildProcess> child_;
};

}  // namespace vantora
