// SPDX-License-Identifier: MIT
#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <string>

#include "runtime/resident_memory.hpp"

namespace vantora {
namespace {

std::string ownMemoryMap() {
  std::string text;
  const int file = open("/proc/self/smaps", O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    return text;
  }
  std::array<char, 4096> part{};
  for (;;) {
    const ssize_t count = read(file, part.data(), part.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      break;
    }
    text.append(part.data(), static_cast<std::size_t>(count));
  }
  close(file);
  return text;
}

}  // namespace

void releaseUnusedCode() {
  for (const MemoryRange& range : unwrittenFileRanges(ownMemoryMap())) {
    // The kernel names memory by numbers; a hint that it refuses changes nothing.
    void* const begin = reinterpret_cast<void*>(range.begin);  // NOLINT(performance-no-int-to-ptr)
    madvise(begin, range.size, MADV_DONTNEED);
  }
}

}  // namespace vantora
