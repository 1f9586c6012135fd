// SPDX-License-Identifier: MIT
#include <pthread.h>

#include <string>

#include "runtime/thread_hints.hpp"

namespace vantora {

// macOS coalesces timers by the thread's quality of service; there is no slack to set.
void setTimerSlackOfThisThread(Seconds) {}

DefaultTimerSlack::DefaultTimerSlack() = default;
DefaultTimerSlack::~DefaultTimerSlack() = default;

void nameThisThread(std::string_view name) {
  pthread_setname_np(std::string(name).c_str());
}

}  // namespace vantora
