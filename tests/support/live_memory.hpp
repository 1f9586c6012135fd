// SPDX-License-Identifier: MIT
//
// How much memory a test program holds, for tests of what is given back. Without a
// sanitizer, a program that links this allocates through operators that count.
#pragma once

#include <cstddef>

namespace vantora::test {

/// The bytes that are given out and not taken back, of all threads: by `new`, as the
/// allocator rounds them up, or with a sanitizer by its allocator.
[[nodiscard]] std::size_t liveBytes();

/// How many times memory has been given out, of all threads and as above.
[[nodiscard]] std::size_t allocations();

}  // namespace vantora::test
