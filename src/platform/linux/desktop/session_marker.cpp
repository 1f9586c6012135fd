// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/session_marker.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>

namespace vantora {

bool markOncePerSession(const char* runtimeDirectory, const std::string& name) {
  if (runtimeDirectory == nullptr || *runtimeDirectory != '/') {
    return true;
  }
  const std::string path = std::string(runtimeDirectory) + "/" + name;
  const int file = ::open(path.c_str(), O_CREAT | O_EXCL | O_WRONLY | O_CLOEXEC | O_NOFOLLOW, 0600);
  if (file < 0) {
    return errno != EEXIST;
  }
  ::close(file);
  return true;
}

}  // namespace vantora
