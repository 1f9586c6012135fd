// SPDX-License-Identifier: MIT
//
// Preloaded into a program, makes every read of a file with the name in BLOCKED_ATTRIBUTE
// wait for ever, as a broken driver's attribute does.
#include <dlfcn.h>
#include <sys/ioctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdlib>
#include <string_view>

namespace {

void waitIfBlocked(int file) {
  const char* blocked = std::getenv("BLOCKED_ATTRIBUTE");
  char link[32] = "/proc/self/fd/";
  char digits[12];
  int count = 0;
  for (int rest = file; rest > 0 || count == 0; rest /= 10) {
    digits[count++] = static_cast<char>('0' + rest % 10);
  }
  char* end = link + 14;
  while (count > 0) {
    *end++ = digits[--count];
  }
  char path[4096];
  const ssize_t length = readlink(link, path, sizeof path);
  if (blocked != nullptr && length > 0 &&
      std::string_view(path, static_cast<std::size_t>(length)).ends_with(blocked)) {
    while (true) {
      sleep(60);
    }
  }
}

}  // namespace

extern "C" ssize_t pread64(int file, void* buffer, size_t size, off64_t offset) {
  using Pread = ssize_t (*)(int, void*, size_t, off64_t);
  static const auto real = reinterpret_cast<Pread>(dlsym(RTLD_NEXT, "pread64"));
  waitIfBlocked(file);
  return real(file, buffer, size, offset);
}

extern "C" ssize_t pread(int file, void* buffer, size_t size, off_t offset) {
  return pread64(file, buffer, size, offset);
}

// The mock of the machine now and then answers FIONBIO, with which the event loop makes a new
// pipe non-blocking, by ENOTTY while another thread reads the machine. The kernel never does.
extern "C" int ioctl(int file, unsigned long request, ...) {
  using Ioctl = int (*)(int, unsigned long, void*);
  static const auto next = reinterpret_cast<Ioctl>(dlsym(RTLD_NEXT, "ioctl"));
  va_list arguments;
  va_start(arguments, request);
  void* argument = va_arg(arguments, void*);
  va_end(arguments);
  return request == FIONBIO ? static_cast<int>(syscall(SYS_ioctl, file, request, argument))
                            : next(file, request, argument);
}
