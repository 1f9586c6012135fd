// SPDX-License-Identifier: MIT
//
// What the clients that ask a command-line program one thing have in common: they hold
// one conversation on a queue, end once, and tell one result on the main thread.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>

#include "runtime/line_conversation.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// Where conversations take place. All of it outlives the clients.
struct ConversationHost {
  TaskQueue& queue;  ///< The clients' own state and the launcher's events live on it.
  TaskQueue& main;   ///< Owners are told on it. May be the same queue.
  ChildProcessLauncher& launcher;
  std::string workingDirectory;  ///< Of the children; created when missing.
};

/// `Interface` is what the owner sees, with start() and cancel(). Owned by a shared_ptr;
/// everything that is registered anywhere holds it weakly, so that a client which was
/// dropped is silent. It may be dropped on any thread.
template <typename Interface, typename Answer>
class OneAnswerClient : public Interface,
                        public std::enable_shared_from_this<OneAnswerClient<Interface, Answer>> {
 public:
  using ProcessStarted = std::function<void(std::int32_t processId)>;
  using Completion = std::function<void(Answer)>;

  ~OneAnswerClient() override {
    // The conversation may be in the middle of an event, and its child belongs to the
    // queue's thread: it ends there, as a task of its own.
    host_.queue.post([ending = std::move(conversation_)]() mutable { ending.reset(); });
  }
  OneAnswerClient(const OneAnswerClient&) = delete;
  OneAnswerClient& operator=(const OneAnswerClient&) = delete;

  void start() final {
    host_.queue.post(guarded([this] { launchOnce(); }));
  }
  void cancel() final {
    host_.queue.post(guarded([this] { finish(cancelledAnswer()); }));
  }

 protected:
  OneAnswerClient(ConversationHost host, ProcessStarted onProcessStarted, Completion completion)
      : host_(std::move(host)),
        conversation_(
            std::make_shared<LineConversation>(host_.queue, host_.launcher, quotaByteLimit)),
        onProcessStarted_(std::move(onProcessStarted)),
        completion_(std::move(completion)) {}

  /// On the queue, once, unless the client was cancelled before.
  virtual void launch() = 0;
  [[nodiscard]] virtual Answer cancelledAnswer() const = 0;
  /// On the queue, when the result is decided: lets go of what the client holds besides.
  virtual void onFinish() {}

  [[nodiscard]] LineConversation& conversation() { return *conversation_; }
  [[nodiscard]] TaskQueue& queue() { return host_.queue; }
  [[nodiscard]] const std::string& workingDirectory() const { return host_.workingDirectory; }

  /// Starts the child and tells so. False when it could not be started.
  [[nodiscard]] bool startChild(const ChildProcessOptions& options,
                                LineConversation::Events events) {
    if (!conversation_->start(options, std::move(events))) {
      return false;
    }
    if (onProcessStarted_) {
      host_.main.post(guarded([this, id = conversation_->childId()] { onProcessStarted_(id); }));
    }
    return true;
  }

  void setDeadline(Seconds delay, TaskQueue::Task onDeadline) {
    conversation_->setDeadline(delay, guarded(std::move(onDeadline)));
  }

  /// Decides the result; every later one is dropped.
  void finish(Answer answer) {
    if (!conversation_->end()) {
      return;
    }
    onFinish();
    postToMain([this, decided = std::move(answer)]() mutable {
      const Completion completion = std::exchange(completion_, nullptr);
      completion(std::move(decided));
    });
  }

  template <typename Task>
  void postToMain(Task task) {
    host_.main.post(guarded(std::move(task)));
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

 private:
  void launchOnce() {
    if (!conversation_->isOver() && !std::exchange(isLaunched_, true)) {
      launch();
    }
  }

  ConversationHost host_;
  std::shared_ptr<LineConversation> conversation_;
  bool isLaunched_ = false;
  ProcessStarted onProcessStarted_;
  Completion completion_;
};

}  // namespace vantora
