// SPDX-License-Identifier: MIT
//
// The rules that turn power-source descriptions, as IOKit hands them out, into battery
// readings. The descriptions come through a port, so that the rules run anywhere.
#pragma once

#include <initializer_list>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "model/time.hpp"
#include "runtime/clock.hpp"
#include "sampling/battery_source.hpp"

namespace vantora {

/// A dictionary from text to number, text or flag. An entry of any other kind is left out.
class PowerSourceDescription {
 public:
  using Value = std::variant<double, std::string, bool>;

  PowerSourceDescription() = default;
  PowerSourceDescription(std::initializer_list<std::pair<const std::string, Value>> entries)
      : entries_(entries) {}

  void set(std::string key, Value value) {
    entries_.insert_or_assign(std::move(key), std::move(value));
  }
  [[nodiscard]] bool empty() const { return entries_.empty(); }

  /// The entry, if it is there and of that kind: a flag is no number, and the other way round.
  [[nodiscard]] std::optional<double> number(std::string_view key) const;
  [[nodiscard]] std::optional<std::string_view> text(std::string_view key) const;
  [[nodiscard]] std::optional<bool> flag(std::string_view key) const;

 private:
  template <typename T>
  [[nodiscard]] const T* find(std::string_view key) const;
  std::map<std::string, Value, std::less<>> entries_;
};

/// What the system says about adapter and power sources. Used on the sampling queue only;
/// what cannot be had is nothing, an ordinary state.
class PowerSourcePort {
 public:
  virtual ~PowerSourcePort() = default;

  /// IOPSCopyExternalPowerAdapterDetails; nothing when no adapter describes itself.
  [[nodiscard]] virtual std::optional<PowerSourceDescription> adapterDetails() = 0;

  /// The description of every power source, in the system's order
  /// (IOPSCopyPowerSourcesInfo, IOPSCopyPowerSourcesList, IOPSGetPowerSourceDescription). A
  /// source without a description is an empty one.
  [[nodiscard]] virtual std::vector<PowerSourceDescription> powerSources() = 0;
};

/// Stateless.
namespace BatteryCollector {

/// Reads adapter and first internal battery; `now` dates the valid samples. What is missing
/// keeps its default sample.
[[nodiscard]] BatteryReadings read(PowerSourcePort& port, WallTime now);

}  // namespace BatteryCollector

/// The battery of a machine that describes its power sources. Both arguments must outlive it.
class DescribedBattery final : public BatterySource {
 public:
  DescribedBattery(PowerSourcePort& port, const Clock& clock) : port_(port), clock_(clock) {}
  [[nodiscard]] BatteryReadings read() override {
    return BatteryCollector::read(port_, clock_.now());
  }

 private:
  PowerSourcePort& port_;
  const Clock& clock_;
};

}  // namespace vantora
