// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <variant>

#include "app/program_answer.hpp"

namespace vantora {

/// What the program is started for.
enum class AgentTask : std::uint8_t {
  run,  ///< To be the session's agent.
  diagnose,
  diagnoseAsJson,
};

/// What to do, or what to answer at once: help and version with status 0, a mistake with 2.
[[nodiscard]] std::variant<AgentTask, ProgramAnswer> readAgentArguments(int argc,
                                                                        const char* const* argv);

}  // namespace vantora
