// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include "ports/power_events.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// Power-source changes from IOKit's run-loop source, sleep and wake from the workspace's
/// notifications. macOS waits with sleeping until the notification's observers have
/// returned and has nothing to hold, so the hold is null.
class WorkspacePowerEvents final : public PowerEvents {
 public:
  /// `mainQueue` must outlive it.
  explicit WorkspacePowerEvents(TaskQueue& mainQueue);
  ~WorkspacePowerEvents() override;
  WorkspacePowerEvents(const WorkspacePowerEvents&) = delete;
  WorkspacePowerEvents& operator=(const WorkspacePowerEvents&) = delete;

  void start(Handlers handlers) override;

 private:
  struct Observation;
  TaskQueue& mainQueue_;
  std::shared_ptr<Observation> observation_;
};

}  // namespace vantora
