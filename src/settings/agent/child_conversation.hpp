// SPDX-License-Identifier: MIT
//
// A child process that speaks in lines: what window, menu and tool tip have in common at
// the agent's end. Main thread only.
#pragma once

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>

#include "process/child_process.hpp"
#include "process/line_framer.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// At most one child at a time. Every event may end the conversation and begin another one.
class ChildConversation {
 public:
  struct Events {
    /// The child said a line. False if it breaks the protocol. Empty for a child whose
    /// output is dropped.
    std::function<bool(std::string_view line)> onLine;
    /// A line broke the protocol, or more bytes than the limit wait without a line.
    std::function<void()> onBroken;
    std::function<void(ChildExit exit)> onExit;
  };

  /// `queue` is the main queue; both must outlive the conversation. At most `readLimit`
  /// bytes may wait to be cut into lines.
  ChildConversation(TaskQueue& queue, ChildProcessLauncher& launcher, std::size_t readLimit,
                    Events events);
  ChildConversation(const ChildConversation&) = delete;
  ChildConversation& operator=(const ChildConversation&) = delete;

  /// Nothing on success, else a fault that says what to do about it: the program may be in a
  /// package that is not installed. There must be no child.
  [[nodiscard]] std::optional<Fault> start(const ChildProcessOptions& options);

  [[nodiscard]] bool isOpen() const { return child_ != nullptr; }

  /// False when the child no longer reads.
  [[nodiscard]] bool write(std::string_view line) { return child_->write(line); }

  /// Ends the child, if there is one, and forgets what it said. No event follows.
  void end();

 private:
  TaskQueue& queue_;
  ChildProcessLauncher& launcher_;
  Events events_;
  LineFramer framer_;
  std::unique_ptr<ChildProcess> child_;
};

}  // namespace vantora
