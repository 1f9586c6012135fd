// SPDX-License-Identifier: MIT
//
// What the clients of command-line assistants share: they start one child process, hold one
// conversation in lines with it and end with exactly one result. What is said, and what the lines
// mean, is the derived class's. Lives on the main thread.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "process/line_conversation.hpp"
#include "quota/assistant_executable.hpp"
#include "quota/quota_client.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// Where conversations take place. All of it outlives the clients.
struct ConversationHost {
  TaskQueue& queue;  ///< The main queue; the launcher's events arrive on it.
  ChildProcessLauncher& launcher;
  std::string workingDirectory;  ///< Of the children; created when missing.
};

/// How a client starts its child and calls its failures: Portuguese sentences for the user.
struct ClientForm {
  std::vector<std::string> arguments;
  std::map<std::string, std::string> environmentChanges = {};
  const char* couldNotStart;
  const char* inputClosed;
  const char* overLimit;
  const char* deadlinePassed;
};

/// How much a child may say in one conversation, lines that decide nothing and error output
/// included. An assistant says a few hundred lines; one that never stops would cost a core until
/// the deadline.
inline constexpr std::size_t maxConversationLines = 10'000;
inline constexpr std::size_t maxConversationBytes = 16'000'000;

/// `Result` is a variant with the types of quota_result that are used here. Owned by a shared_ptr;
/// everything that is registered anywhere holds the client weakly, so that a destroyed client is
/// silent.
template <typename Result>
class OneAnswerClient : public QuotaClient,
                        public std::enable_shared_from_this<OneAnswerClient<Result>> {
 public:
  using ProcessStarted = std::function<void(std::int32_t processId)>;
  using Completion = std::function<void(Result)>;

  ~OneAnswerClient() override {
    // The conversation may be in the middle of an event: it ends as a task of its own.
    host_.queue.post([ending = std::move(conversation_)]() mutable { ending.reset(); });
  }
  OneAnswerClient(const OneAnswerClient&) = delete;
  OneAnswerClient& operator=(const OneAnswerClient&) = delete;

  void start() final {
    post([this] { launchOnce(); });
  }
  void cancel() final {
    post([this] { finish(quota_result::Cancelled{}); });
  }

 protected:
  /// `onProcessStarted` may be empty. Starts nothing.
  OneAnswerClient(ConversationHost host, AssistantExecutable executable, ClientForm form,
                  ProcessStarted onProcessStarted, Completion completion)
      : host_(std::move(host)),
        executable_(std::move(executable)),
        form_(std::move(form)),
        conversation_(
            std::make_shared<LineConversation>(host_.queue, host_.launcher, quotaByteLimit)),
        onProcessStarted_(std::move(onProcessStarted)),
        completion_(std::move(completion)) {}

  // Called until a result is decided. begin() once, when the child was started; the others as the
  // child speaks or ends.
  virtual void begin() = 0;
  virtual void takeLine(std::string_view line) = 0;
  virtual void onOutputEnd() = 0;
  virtual void onExit() = 0;
  virtual void takeErrorOutput(std::string_view /*bytes*/) {}
  /// The result is decided: releases what the derived class holds besides.
  virtual void onFinish() {}

  /// Sends `message` as a line. False, and the client has failed, when the child closed its input.
  bool send(std::string message) {
    const bool isSent = conversation_->send(std::move(message));
    if (!isSent) {
      fail(form_.inputClosed);
    }
    return isSent;
  }

  /// Fails `delay` from now; replaces the deadline before.
  void setDeadline(Seconds delay) {
    conversation_->setDeadline(delay, guarded([this] { fail(form_.deadlinePassed); }));
  }

  /// Runs `task` on the main queue after `delay`, unless the client is gone by then.
  template <typename Task>
  [[nodiscard]] TimerHandle runAfter(Seconds delay, Task task) {
    return host_.queue.runAfter(delay, Seconds{0}, guarded(std::move(task)));
  }

  template <typename Task>
  void post(Task task) {
    host_.queue.post(guarded(std::move(task)));
  }

  /// Decides the result; every later one is dropped.
  void finish(Result result) {
    if (!conversation_->end()) {
      return;
    }
    onFinish();
    post([this, decided = std::move(result)]() mutable {
      const Completion completion = std::exchange(completion_, nullptr);
      completion(std::move(decided));
    });
  }

  void fail(const char* text) { finish(quota_result::Failure{text}); }

 private:
  void launchOnce() {
    if (conversation_->isOver() || std::exchange(isLaunched_, true)) {
      return;
    }
    ChildProcessOptions options{executable_.path, form_.arguments, form_.environmentChanges,
                                host_.workingDirectory, executable_.foundPath};
    const char* path = std::getenv("PATH");
    options.environmentChanges["PATH"] = searchPathFor(executable_, path != nullptr ? path : "");
    if (!conversation_->start(options, events())) {
      fail(form_.couldNotStart);
      return;
    }
    if (onProcessStarted_) {
      post([this, id = conversation_->childId()] { onProcessStarted_(id); });
    }
    begin();
  }

  [[nodiscard]] LineConversation::Events events() {
    LineConversation::Events events;
    events.onLine = guarded([this](std::string_view line) {
      if (isWithinLimits(1, line.size() + 1)) {
        takeLine(line);
      }
    });
    events.onOverLimit = guarded([this] { fail(form_.overLimit); });
    events.onOutputEnd = guarded([this] { onOutputEnd(); });
    events.onExit = guarded([this] { onExit(); });
    events.onInputLost = guarded([this] { fail(form_.inputClosed); });
    events.onErrorOutput = guarded([this](std::string_view bytes) {
      if (isWithinLimits(0, bytes.size())) {
        takeErrorOutput(bytes);
      }
    });
    return events;
  }

  /// Counts what the child said. False, and the client has failed, beyond the limits.
  bool isWithinLimits(std::size_t lines, std::size_t bytes) {
    lines_ += lines;
    bytes_ += bytes;
    if (lines_ > maxConversationLines || bytes_ > maxConversationBytes) {
      fail(form_.overLimit);
      return false;
    }
    return true;
  }

  /// `task`, which holds `this`, as something that may be called after the client's end.
  template <typename Task>
  [[nodiscard]] auto guarded(Task task) {
    return [weak = this->weak_from_this(), task = std::move(task)](auto&&... arguments) mutable {
      if (const auto self = weak.lock()) {
        task(std::forward<decltype(arguments)>(arguments)...);
      }
    };
  }

  ConversationHost host_;
  const AssistantExecutable executable_;
  const ClientForm form_;
  std::shared_ptr<LineConversation> conversation_;
  bool isLaunched_ = false;
  std::size_t lines_ = 0;
  std::size_t bytes_ = 0;
  ProcessStarted onProcessStarted_;
  Completion completion_;
};

}  // namespace vantora
