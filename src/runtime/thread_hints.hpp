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

/// Names the calling thread for debuggers and process viewers; cut to what fits.
void nameThisThread(std::string_view name);

}  // namespace vantora
