// SPDX-License-Identifier: MIT
#pragma once

#include "settings/conversation/window_state.hpp"

namespace vantora::test {

/// A state as an agent might tell it: six modules of every kind, both quotas, a picture.
/// Its readings are made up; it is for tests and for pictures of the window.
[[nodiscard]] WindowState exampleState(double scale);

}  // namespace vantora::test
