// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <utility>

#include "runtime/child_process.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// Ends the child and leaves `child` empty. It is destroyed as a task of the queue, because
/// its owner may be inside of one of its events. Does nothing without a child.
inline void letGo(std::unique_ptr<ChildProcess>& child, TaskQueue& queue) {
  if (child != nullptr) {
    child->terminate();
    queue.post([ended = std::shared_ptr<ChildProcess>(std::move(child))] {});
  }
}

}  // namespace vantora
