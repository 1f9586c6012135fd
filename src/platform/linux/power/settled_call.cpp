// SPDX-License-Identifier: MIT
#include "platform/linux/power/settled_call.hpp"

#include <utility>

namespace vantora {

SettledCall::SettledCall(TaskQueue& queue, std::function<void()> call)
    : queue_(queue), call_(std::move(call)) {}

void SettledCall::request() {
  quiet_ = queue_.runAfter(quietInterval, Seconds{0}, [this] { run(); });
  if (latest_ == nullptr) {
    latest_ = queue_.runAfter(maxDelay, Seconds{0}, [this] { run(); });
  }
}

void SettledCall::run() {
  quiet_.reset();
  latest_.reset();
  call_();
}

}  // namespace vantora
