// SPDX-License-Identifier: MIT
#include "app/linux/own_programs.hpp"

#include <system_error>

#include "platform/linux/desktop/xdg_folders.hpp"

namespace vantora {

OwnPrograms::OwnPrograms() : OwnPrograms(ownExecutable().value_or("/usr/bin/vantora")) {}

OwnPrograms::OwnPrograms(const std::filesystem::path& executable)
    : folder_(executable.parent_path()) {}

std::string OwnPrograms::glyphs() const {
  constexpr const char* name = "vantora-glyphs";
  std::error_code error;
  return std::filesystem::exists(folder_ / name, error)
             ? folder_ / name
             : folder_.parent_path() / "libexec" / "vantora" / name;
}

}  // namespace vantora
