// SPDX-License-Identifier: MIT
#pragma once

#include "model/time.hpp"

namespace vantora::test {

/// The instant of tests that need any, and the one at which VirtualTime starts:
/// 2026-09-21T14:13:20Z.
inline constexpr WallTime exampleTime{std::chrono::seconds(1'790'000'000)};

}  // namespace vantora::test
