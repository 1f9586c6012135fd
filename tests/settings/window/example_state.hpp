// SPDX-License-Identifier: MIT
#pragma once

#include "settings/conversation/window_state.hpp"

namespace vantora::test {

/// A state as an agent might tell it: six modules of every kind, both quotas, a picture, the
/// machine's links. Its readings are made up; it is for tests and for pictures of the window.
/// While paused the readings are the last ones.
[[nodiscard]] WindowState exampleState(double scale, bool isPaused = false);

}  // namespace vantora::test
