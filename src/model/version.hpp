// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// The version of this build, "0.1.0": the one that CMakeLists.txt gives the project.
extern const char programVersion[];

}  // namespace vantora
