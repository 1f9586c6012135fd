// SPDX-License-Identifier: MIT
//
// Temperatures and fans, as the sampling coordinator asks for them.
#pragma once

#include "model/sample.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// Keeps what it opens between passes. Used on the sampling queue only.
class SensorSource {
 public:
  virtual ~SensorSource() = default;

  /// Opens what the demanded sensor metrics need, and lets go of everything when none
  /// is demanded.
  virtual void configure(MetricSet demand) = 0;

  /// Reads what the next sample() returns, where the readings come from a driver that may take
  /// its time, and then calls `done` on the sampling queue. By default there is nothing to wait
  /// for.
  virtual void refresh(MetricSet demand, TaskQueue::Task&& done) {
    (void)demand;
    done();
  }

  /// A sample for every demanded metric of the sensors family and for no other; one that
  /// cannot be read has a sample that says why.
  [[nodiscard]] virtual SampleTable sample(MetricSet demand) = 0;

  /// Lets go of everything, back-off included.
  virtual void reset() = 0;
};

}  // namespace vantora
