// SPDX-License-Identifier: MIT
#include "process/line_conversation.hpp"

#include <utility>

namespace vantora {

bool LineConversation::start(const ChildProcessOptions& options, Events events) {
  events_ = std::move(events);
  // The launcher is silent about a child once it is terminated or destroyed, so `this`
  // is there whenever one of these is called.
  ChildProcessEvents childEvents;
  childEvents.onOutput = [this](std::string_view bytes) { take(bytes); };
  childEvents.onOutputEnd = events_.onOutputEnd;
  childEvents.onErrorOutput = events_.onErrorOutput;
  childEvents.onExit = [this](ChildExit) {
    if (events_.onExit) {
      events_.onExit();
    }
  };
  childEvents.onInputLost = events_.onInputLost;
  auto started = launcher_.start(options, std::move(childEvents));
  if (!started) {
    return false;
  }
  child_ = std::move(started).value();
  return true;
}

bool LineConversation::send(std::string message) {
  if (isOver_) {
    return true;
  }
  message += '\n';
  return child_ != nullptr && child_->write(message);
}

void LineConversation::take(std::string_view bytes) {
  if (!framer_.append(bytes)) {
    if (events_.onOverLimit) {
      events_.onOverLimit();
    }
    return;
  }
  while (!isOver_) {
    const auto line = framer_.takeLine();
    if (!line) {
      return;
    }
    if (events_.onLine) {
      events_.onLine(*line);
    }
  }
}

void LineConversation::setDeadline(Seconds delay, TaskQueue::Task onDeadline) {
  deadline_.reset();
  if (!isOver_) {
    deadline_ = queue_.runAfter(delay, Seconds{0}, std::move(onDeadline));
  }
}

bool LineConversation::end() {
  if (std::exchange(isOver_, true)) {
    return false;
  }
  deadline_.reset();
  if (child_ != nullptr) {
    child_->terminate();
  }
  return true;
}

}  // namespace vantora
