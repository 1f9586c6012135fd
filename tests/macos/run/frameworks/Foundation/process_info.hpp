// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace standin {

/// The options of the activities that are held: what keeps App Nap away.
[[nodiscard]] std::vector<std::uint64_t> heldActivities();

/// The major version of the system that is played.
[[nodiscard]] int systemVersion();

}  // namespace standin
