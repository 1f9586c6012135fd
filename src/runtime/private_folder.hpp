// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// Creates the folder `path` with the parents that it lacks, for the user alone (0700,
/// as the XDG Base Directory Specification asks for). False when it is not there after
/// that. Folders that exist keep their permissions.
bool makePrivateFolder(const std::string& path);

}  // namespace vantora
