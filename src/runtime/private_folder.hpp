// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// Creates the folder `path` with the parents that it lacks, for the user alone (0700,
/// as freedesktop.org's XDG Base Directory asks for). 0, or the error number (errno) when
/// it is not there after that. Folders that exist keep their permissions.
int makePrivateFolder(const std::string& path);

}  // namespace vantora
