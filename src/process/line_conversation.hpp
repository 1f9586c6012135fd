// SPDX-License-Identifier: MIT
//
// One conversation with one child process in lines: what every such client needs and
// none does differently. It starts the child, cuts its output into lines under a limit,
// keeps one deadline, and ends once, with everything that goes with it. What the lines
// mean, and what the ends of the child mean, is the client's.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>

#include "process/child_process.hpp"
#include "process/line_framer.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// The most bytes of a quota client's child that may wait for their line feed.
inline constexpr std::size_t quotaByteLimit = 1'000'000;

/// On one queue's thread only, the launcher's. No event comes once it is over, and none
/// inside a call. An event may end the conversation but not destroy it.
class LineConversation {
 public:
  struct Events {
    /// A line without its line feed. Valid during the call.
    std::function<void(std::string_view line)> onLine;
    /// More than the limit waited. Nothing of what arrived with it is delivered.
    std::function<void()> onOverLimit;
    std::function<void()> onOutputEnd;
    std::function<void()> onExit;
    /// What send() had accepted cannot be delivered.
    std::function<void()> onInputLost;
    std::function<void(std::string_view bytes)> onErrorOutput;
  };

  LineConversation(TaskQueue& queue, ChildProcessLauncher& launcher, std::size_t byteLimit)
      : queue_(queue), launcher_(launcher), framer_(byteLimit) {}
  LineConversation(const LineConversation&) = delete;
  LineConversation& operator=(const LineConversation&) = delete;

  /// Starts the child; once. False when it could not be started.
  [[nodiscard]] bool start(const ChildProcessOptions& options, Events events);

  /// The child's number; only after a successful start.
  [[nodiscard]] std::int32_t childId() const { return child_->id(); }

  /// Sends `message` and a line feed. False when the child closed its input. Nothing is
  /// sent, and that is no error, once the conversation is over.
  [[nodiscard]] bool send(std::string message);

  /// Calls `onDeadline` `delay` from now, unless it is over by then; replaces the
  /// deadline before.
  void setDeadline(Seconds delay, TaskQueue::Task onDeadline);

  /// Ends it: no deadline, no event; the child's streams are closed and it is asked to
  /// end. True for the call that ended it, false ever after.
  bool end();
  [[nodiscard]] bool isOver() const { return isOver_; }

 private:
  void take(std::string_view bytes);

  TaskQueue& queue_;
  ChildProcessLauncher& launcher_;
  LineFramer framer_;
  Events events_;
  std::unique_ptr<ChildProcess> child_;
  TimerHandle deadline_;
  bool isOver_ = false;
};

}  // namespace vantora
