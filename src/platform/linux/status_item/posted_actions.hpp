// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "platform/linux/status_item/status_menu.hpp"
#include "ports/status_item.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// What the user asks the item for. It comes from the middle of a message on the bus, and may
/// end the connection: it runs from the queue, when the message is done with, and not at all
/// once this object is gone. Lives on the main thread.
class PostedActions {
 public:
  /// `queue` outlives it.
  explicit PostedActions(TaskQueue& queue) : queue_(queue) {}

  void set(StatusItemActions actions);
  [[nodiscard]] bool areSet() const { return actions_ != nullptr; }

  [[nodiscard]] bool isPaused() const;
  void openSettings(std::string activationToken);
  void run(StatusMenuCommand command);

 private:
  TaskQueue& queue_;
  std::shared_ptr<const StatusItemActions> actions_;  // what is posted holds it weakly
};

}  // namespace vantora
