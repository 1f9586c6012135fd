// SPDX-License-Identifier: MIT
#include "runtime/resident_memory.hpp"

namespace vantora {

// The pages of code belong to the shared cache there, and cost the program nothing.
void releaseUnusedCode() {}

}  // namespace vantora
