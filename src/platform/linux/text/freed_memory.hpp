// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Gives what the heap has free back to the system. For the end of work that is done
/// seldom and took much more than it leaves, as taking in drawn characters does: the allocator
/// keeps such memory otherwise, for good. Takes microseconds.
void returnFreedMemory();

}  // namespace vantora
