// SPDX-License-Identifier: MIT
//
// Child processes for tests that start none: a test, or a script that it gives, plays
// the child. Events arrive on the launcher's queue, as those of real children do.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "process/child_process.hpp"
#include "runtime/task_queue.hpp"

namespace vantora::test {

/// One started child, seen from the inside. Lives as long as it is referenced; what it
/// does after it was terminated has no effect.
class ScriptedProcess final : public std::enable_shared_from_this<ScriptedProcess> {
 public:
  ScriptedProcess(TaskQueue& queue, std::int32_t id, ChildProcessOptions options,
                  ChildProcessEvents events);

  [[nodiscard]] std::int32_t id() const { return id_; }
  [[nodiscard]] const ChildProcessOptions& options() const { return options_; }
  /// Everything the owner wrote so far.
  [[nodiscard]] const std::string& input() const { return input_; }
  /// The complete lines of it that were not taken before.
  [[nodiscard]] std::vector<std::string> takeInputLines();
  /// Whether the owner closed the input, by itself or with the rest.
  [[nodiscard]] bool isInputClosed() const { return isInputClosed_; }
  [[nodiscard]] bool isTerminated() const { return isTerminated_; }

  /// What the child does.
  void output(std::string bytes);
  void errorOutput(std::string bytes);
  void endOutput();
  /// Ends, and takes its input with it. The end of its output is a separate event:
  /// a descendant may hold it.
  void exit(ChildExit exit = {});
  /// Closes its input: later writes are refused.
  void closeInput() { refusesInput_ = true; }
  /// Closes its input while bytes that were accepted still wait.
  void loseInput();

  /// Called as the owner writes or closes the input, like a child that waits for it.
  std::function<void(ScriptedProcess&, std::string_view bytes)> onInput;
  std::function<void(ScriptedProcess&)> onInputEnd;

 private:
  friend class ScriptedLauncher;
  class Handle;
  void post(std::function<void(const ChildProcessEvents&)> deliver);
  bool take(std::string_view bytes);
  void endInput();
  void terminate();

  TaskQueue& queue_;
  std::int32_t id_;
  ChildProcessOptions options_;
  ChildProcessEvents events_;
  std::string input_;
  std::size_t takenInput_ = 0;
  bool isInputClosed_ = false;
  bool refusesInput_ = false;
  bool isTerminated_ = false;
};

class ScriptedLauncher final : public ChildProcessLauncher {
 public:
  explicit ScriptedLauncher(TaskQueue& queue) : queue_(queue) {}

  /// Every start from now on fails like this; nothing makes them work again.
  void failStarts(std::optional<Fault> fault) { fault_ = std::move(fault); }
  /// Called for each child as it starts: the place for a script.
  std::function<void(ScriptedProcess&)> onStart;

  [[nodiscard]] const std::vector<std::shared_ptr<ScriptedProcess>>& started() const {
    return started_;
  }
  /// The latest child; there must be one.
  [[nodiscard]] ScriptedProcess& latest() const { return *started_.back(); }

  [[nodiscard]] Result<std::unique_ptr<ChildProcess>> start(const ChildProcessOptions& options,
                                                            ChildProcessEvents events) override;

 private:
  TaskQueue& queue_;
  std::optional<Fault> fault_;
  std::vector<std::shared_ptr<ScriptedProcess>> started_;
};

}  // namespace vantora::test
