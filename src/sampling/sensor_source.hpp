// SPDX-License-Identifier: MIT
//
// Temperatures and fans, as the sampling coordinator asks for them.
#pragma once

#include "model/sample.hpp"

namespace vantora {

/// Keeps what it opens between passes. Used on the sampling queue only.
class SensorSource {
 public:
  virtual ~SensorSource() = default;

  /// Opens what the demanded sensor metrics need, and lets go of everything when none
  /// is demanded.
  virtual void configure(MetricSet demand) = 0;

  /// A sample for every demanded metric of the sensors family and for no other; one that
  /// cannot be read has a sample that says why.
  [[nodiscard]] virtual SampleTable sample(MetricSet demand) = 0;

  /// Lets go of everything, back-off included.
  virtual void reset() = 0;
};

}  // namespace vantora
