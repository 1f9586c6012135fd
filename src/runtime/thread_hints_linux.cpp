// SPDX-License-Identifier: MIT
#include <sys/prctl.h>

#include <string>

#include "runtime/thread_hints.hpp"

namespace vantora {

void setTimerSlackOfThisThread(Seconds slack) {
  // 0 asks for the thread's default slack (50 microseconds unless it was inherited).
  const double nanoseconds = slack.count() * 1e9;
  prctl(PR_SET_TIMERSLACK, static_cast<unsigned long>(nanoseconds > 0 ? nanoseconds : 0), 0, 0, 0);
}

DefaultTimerSlack::DefaultTimerSlack() {
  // What init starts with: TASK's timer_slack_ns in the kernel's init/init_task.c.
  constexpr unsigned long defaultNanoseconds = 50'000;
  const int current = prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0);
  previous_ = current > 0 ? static_cast<unsigned long>(current) : defaultNanoseconds;
  prctl(PR_SET_TIMERSLACK, defaultNanoseconds, 0, 0, 0);
}

DefaultTimerSlack::~DefaultTimerSlack() {
  prctl(PR_SET_TIMERSLACK, previous_, 0, 0, 0);
}

void nameThisThread(std::string_view name) {
  // The kernel keeps 15 bytes (TASK_COMM_LEN); the end distinguishes queues best.
  constexpr std::size_t maxLength = 15;
  const std::string kept(name.size() > maxLength ? name.substr(name.size() - maxLength) : name);
  prctl(PR_SET_NAME, kept.c_str(), 0, 0, 0);
}

}  // namespace vantora
