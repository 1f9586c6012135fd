// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace vantora {

/// Gives back the pages of code and constants that the program needed once, as for its
/// start, and does not need to go on. They stay in the system's cache of files; what is
/// used again is mapped again without a read from the disk. Pages that the program wrote
/// to are never touched. Linux: madvise(2) with MADV_DONTNEED. Elsewhere it does nothing.
///
/// For a moment when nothing is urgent: it takes under a millisecond, and the next work
/// of every kind a little longer once.
void releaseUnusedCode();

/// A part of this process's memory, in bytes.
struct MemoryRange {
  std::size_t begin = 0;
  std::size_t size = 0;
  bool operator==(const MemoryRange&) const = default;
};

/// Of a text like /proc/self/smaps, proc(5), the ranges that are backed by a file, cannot
/// be written to, and hold no page of their own (Anonymous: 0 kB): dropping their pages
/// loses nothing. What does not read as such a range is left out.
[[nodiscard]] std::vector<MemoryRange> unwrittenFileRanges(std::string_view smaps);

}  // namespace vantora
