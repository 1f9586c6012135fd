// SPDX-License-Identifier: MIT
//
// The battery and the power adapter, as the sampling coordinator asks for them.
#pragma once

#include "model/sample.hpp"

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

  /// Reads everything anew. A machine without a battery is an ordinary state.
  [[nodiscard]] virtual BatteryReadings read() = 0;
};

}  // namespace vantora
