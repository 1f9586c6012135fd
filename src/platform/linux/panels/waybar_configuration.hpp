// SPDX-License-Identifier: MIT
//
// Where a waybar stands, and how high it draws icons. Its tray does not tell that; its
// configuration does (waybar(5), waybar-tray(5)).
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/panels/panel.hpp"

namespace vantora {

/// Vertical is a bar that stands at the left or the right of its screen; of several, every one
/// that has a tray. The icons' height is the largest of their trays, and nothing where one of them
/// does not say it. The defaults for what is no configuration. What a configuration includes from
/// other files is not looked at, so that what stands there is missed. Pure.
[[nodiscard]] PanelLayout waybarLayout(std::string_view configuration);

/// The places in which a waybar looks for its configuration, in order: it takes the first file
/// that exists. `commandLine` and `environment` are those of its process as the kernel has them
/// (proc_pid_cmdline(5), proc_pid_environ(5)): texts that end with zero bytes. A relative path is
/// one in the process's own folder. Pure.
[[nodiscard]] std::vector<std::filesystem::path> waybarConfigurations(std::string_view commandLine,
                                                                      std::string_view environment);

/// waybarLayout() of what the process has as its configuration now; `process` is its folder,
/// "/proc/123". Reads regular files of at most 1 MiB, and may wait for a disk. The defaults when
/// they cannot be read.
[[nodiscard]] PanelLayout readWaybarLayout(const std::string& process);

}  // namespace vantora
