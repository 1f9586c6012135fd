// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "model/metric.hpp"

namespace vantora {

/// A device of the machine, or one channel of it, and what becomes of it: for a person who looks
/// for a fault. Words are Portuguese, without a full stop.
struct DeviceReport {
  std::string name;     ///< Of the chip, the power supply or the network interface.
  std::string driver;   ///< The kernel's name of its driver; empty where it is not told.
  std::string channel;  ///< "temp1"; empty for a device that is read as a whole.
  std::string label;    ///< What the driver calls the channel; may be empty.
  std::string state;    ///< In a few words; may be empty.
  MetricSet feeds;      ///< The metrics that are made of it.
  std::string why;      ///< Why it feeds none; empty where it feeds one.
  bool operator==(const DeviceReport&) const = default;
};

}  // namespace vantora
