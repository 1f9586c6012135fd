// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

namespace vantora {

/// Answers a start that is not the agent's, which comes without arguments of these kinds and
/// with a pipe or a socket as `input`: --help and --version with status 0 and, where a person
/// started the program, a line that says what it is with 2. Nothing where the agent is at the
/// other end. Needs no display.
[[nodiscard]] std::optional<int> answerStartByHand(int argc, const char* const* argv, int input);

}  // namespace vantora
