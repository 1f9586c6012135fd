// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// Whether this is the first call with `name` in the user's session: later ones, of other
/// processes too, answer false. The mark is an empty file in `runtimeDirectory`, the value of
/// XDG_RUNTIME_DIR, which the system removes with the session; null or empty where there is
/// none, and then every call is the first.
[[nodiscard]] bool markOncePerSession(const char* runtimeDirectory, const std::string& name);

}  // namespace vantora
