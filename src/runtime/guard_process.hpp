// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Makes the calling process, a fork of this program, one that guards: nothing of the
/// program stays open but standard input, and where the system allows it another name is
/// shown. Only what signal-safety(7) allows.
void becomeGuardProcess();

}  // namespace vantora
