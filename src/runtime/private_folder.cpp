// SPDX-License-Identifier: MIT
#include "runtime/private_folder.hpp"

#include <sys/stat.h>

#include <cerrno>

namespace vantora {

int makePrivateFolder(const std::string& path) {
  constexpr mode_t userOnly = S_IRWXU;
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    // Some systems answer EROFS or EACCES for a folder that is there.
    if (mkdir(part.c_str(), userOnly) != 0 && errno != EEXIST) {
      const int error = errno;
      struct stat found {};
      if (stat(part.c_str(), &found) != 0) {
        return error;
      }
    }
    if (end == std::string::npos) {
      break;
    }
  }
  struct stat found {};
  if (stat(path.c_str(), &found) != 0) {
    return errno;
  }
  return S_ISDIR(found.st_mode) ? 0 : ENOTDIR;
}

}  // namespace vantora
