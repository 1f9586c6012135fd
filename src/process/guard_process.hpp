// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Turns the calling process, a fork of this program, into a guard: only standard input stays
/// open, and where the system allows it, process viewers show another name.
/// Async-signal-safe (signal-safety(7)).
void becomeGuardProcess();

}  // namespace vantora
