// SPDX-License-Identifier: MIT
//
// How much memory a test program holds, for tests of what is given back. A program that
// links this allocates through operators that count.
#pragma once

#include <cstddef>

namespace vantora::test {

/// The bytes that `new` has given out and `delete` not taken back, as the allocator rounds
/// them up, of all threads.
[[nodiscard]] std::size_t liveBytes();

}  // namespace vantora::test
