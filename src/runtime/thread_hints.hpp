// SPDX-License-Identifier: MIT
//
// What a thread may tell the system about itself. Hints: a system that does not take
// them changes nothing.
#pragma once

#include <string_view>

#include "model/time.hpp"

namespace vantora {

/// Lets the system run the calling thread's timers up to `slack` late, so that it wakes
/// once for several. Zero means the system's default. Linux: prctl(2), PR_SET_TIMERSLACK.
void setTimerSlackOfThisThread(Seconds slack);

/// While it lives, the calling thread has the system's default slack. A child process
/// inherits the slack of the thread that starts it (prctl(2)) and keeps it across exec;
/// ours is none of its business.
class DefaultTimerSlack {
 public:
  DefaultTimerSlack();
  ~DefaultTimerSlack();
  DefaultTimerSlack(const DefaultTimerSlack&) = delete;
  DefaultTimerSlack& operator=(const DefaultTimerSlack&) = delete;

 private:
  [[maybe_unused]] unsigned long previous_ = 0;
};

/// Names the calling thread for debuggers and process viewers; cut to what fits.
void nameThisThread(std::string_view name);

}  // namespace vantora
