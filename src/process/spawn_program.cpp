// SPDX-License-Identifier: MIT
#include "process/spawn_program.hpp"

#include "runtime/thread_hints.hpp"

namespace vantora {

int spawnProgram(uv_loop_t& loop, uv_process_t& process, uv_process_options_t options) {
  options.flags |= UV_PROCESS_DETACHED;  // setsid(2)
  // Ours are marked already; those that were open at our start need not be.
  keepDescriptorsFromChildren();
  const DefaultTimerSlack slackOfChild;
  return uv_spawn(&loop, &process, &options);
}

}  // namespace vantora
