// SPDX-License-Identifier: MIT
#pragma once

namespace vantora {

/// Tells the system that the calling thread works for the user without the user waiting
/// for it (QOS_CLASS_UTILITY): lower priority, efficient cores, coalesced timers.
void useUtilityPriorityForThisThread();

}  // namespace vantora
