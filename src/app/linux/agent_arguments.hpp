// SPDX-License-Identifier: MIT
//
// The command line of the agent, which has no options of its own beside help and version:
// what it does is set in its window.
#pragma once

#include <optional>

#include "app/program_answer.hpp"

namespace vantora {

/// Nothing where the agent is to run; status 2 where it does not understand.
[[nodiscard]] std::optional<ProgramAnswer> readAgentArguments(int argc, const char* const* argv);

}  // namespace vantora
