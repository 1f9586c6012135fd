// SPDX-License-Identifier: MIT
#include "runtime/private_folder.hpp"

#include <sys/stat.h>

#include <cerrno>

namespace vantora {

bool makePrivateFolder(const std::string& path) {
  constexpr mode_t userOnly = S_IRWXU;
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    // Some systems answer EROFS or EACCES for a folder that is there.
    if (mkdir(part.c_str(), userOnly) != 0 && errno != EEXIST) {
      struct stat found {};
      if (stat(part.c_str(), &found) != 0) {
        return false;
      }
    }
    if (end == std::string::npos) {
      break;
    }
  }
  struct stat found {};
  return stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

}  // namespace vantora
