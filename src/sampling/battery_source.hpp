// SPDX-License-Identifier: MIT
//
// The battery and the power adapter, as the sampling coordinator asks for them.
#pragma once

#include "model/sample.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// One reading of battery and adapter. What could not be read keeps its default: an
/// unavailable sample that says what is missing.
struct BatteryReadings {
  MetricSample percentage = MetricSample::unavailable("Bateria interna indisponível");
  MetricSample duration = MetricSample::unavailable("Estimativa indisponível");  ///< minutes
  MetricSample adapterWatts = MetricSample::unavailable("Adaptador sem potência informada");
  bool onAC = false;
  bool charging = false;

  bool operator==(const BatteryReadings&) const = default;
};

/// Used on the sampling queue only.
class BatterySource {
 public:
  virtual ~BatterySource() = default;

  /// Reads what the next read() returns, where a driver answers that may take its time, and then
  /// calls `done` on the sampling queue. By default there is nothing to wait for.
  virtual void refresh(TaskQueue::Task&& done) { done(); }

  /// Reads everything anew. A machine without a battery is an ordinary state.
  [[nodiscard]] virtual BatteryReadings read() = 0;
};

}  // namespace vantora
