// SPDX-License-Identifier: MIT
#pragma once

#include <unistd.h>

#include <string>
#include <string_view>

#include "support/temporary_folder.hpp"

namespace vantora::test {

/// Lets this process, in a /proc of the test's own, be a waybar that was started with this
/// configuration.
inline void nameWaybarFile(const std::string& processRoot, std::string_view configuration) {
  const std::string process = processRoot + "/" + std::to_string(::getpid());
  const std::string file = process + "/waybar.json";
  writeBytes(file, configuration);
  std::string commandLine = "waybar";
  for (const std::string& argument : {std::string("-c"), file, std::string()}) {
    commandLine += '\0' + argument;
  }
  writeBytes(process + "/cmdline", commandLine);
  writeBytes(process + "/environ", "");
}

}  // namespace vantora::test
