// SPDX-License-Identifier: MIT
//
// The one place where this program executes another.
#pragma once

#include <uv.h>

namespace vantora {

/// uv_spawn(), for a child that takes nothing along of what is this program's own business:
/// it leads a session of its own, has the system's default timer slack, and has no
/// descriptors but the streams in `options`, whatever this program was itself started with.
/// 0, or libuv's error number; `process` must be closed in either case. On the loop's thread.
[[nodiscard]] int spawnProgram(uv_loop_t& loop, uv_process_t& process,
                               uv_process_options_t options);

/// Marks every descriptor beyond the standard streams close-on-exec.
void keepDescriptorsFromChildren();

}  // namespace vantora
