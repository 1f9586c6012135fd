// SPDX-License-Identifier: MIT
#include "platform/macos/thread_priority.hpp"

#include <pthread.h>
#include <pthread/qos.h>

namespace vantora {

void useUtilityPriorityForThisThread() {
  // Fails only for a thread whose priority was set by other means, which none of ours has.
  pthread_set_qos_class_self_np(QOS_CLASS_UTILITY, /*relative priority=*/0);
}

}  // namespace vantora
