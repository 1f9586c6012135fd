// SPDX-License-Identifier: MIT
#include "sampling/battery_collector.hpp"

#include <algorithm>
#include <cmath>

namespace vantora {

template <typename T>
const T* PowerSourceDescription::find(std::string_view key) const {
  const auto entry = entries_.find(key);
  return entry != entries_.end() ? std::get_if<T>(&entry->second) : nullptr;
}

std::optional<double> PowerSourceDescription::number(std::string_view key) const {
  const auto* value = find<double>(key);
  return value != nullptr ? std::optional(*value) : std::nullopt;
}

std::optional<std::string_view> PowerSourceDescription::text(std::string_view key) const {
  const auto* value = find<std::string>(key);
  return value != nullptr ? std::optional<std::string_view>(*value) : std::nullopt;
}

std::optional<bool> PowerSourceDescription::flag(std::string_view key) const {
  const auto* value = find<bool>(key);
  return value != nullptr ? std::optional(*value) : std::nullopt;
}

namespace {

constexpr double tooManyMinutes = 10'000;

// The capacities are percentages or milliampere-hours, according to the machine: only their
// ratio means anything.
std::optional<double> chargePercent(const PowerSourceDescription& battery) {
  const auto current = battery.number("Current Capacity");
  const auto maximum = battery.number("Max Capacity");
  if (!current || !maximum || !(*maximum > 0)) {
    return std::nullopt;
  }
  const double percent = *current * 100 / *maximum;
  return percent >= 0 && percent <= 100 ? std::optional(percent) : std::nullopt;
}

// The system says -1 while it is still calculating.
std::optional<double> minutesLeft(const PowerSourceDescription& battery, bool charging) {
  const auto entry = battery.number(charging ? "Time to Full Charge" : "Time to Empty");
  if (!entry || !std::isfinite(*entry)) {
    return std::nullopt;
  }
  const double minutes = std::trunc(*entry);
  // The sum turns a negative zero into zero.
  return minutes >= 0 && minutes < tooManyMinutes ? std::optional(minutes + 0.0) : std::nullopt;
}

}  // namespace

BatteryReadings BatteryCollector::read(PowerSourcePort& port, WallTime now) {
  BatteryReadings readings;
  if (const auto adapter = port.adapterDetails()) {
    if (const auto watts = adapter->number("Watts"); watts && *watts >= 0) {
      readings.adapterWatts =
          MetricSample::valid(*watts, "IOKit · potência nominal informada do adaptador", now);
    }
  }

  const std::vector<PowerSourceDescription> sources = port.powerSources();
  const auto battery = std::find_if(sources.begin(), sources.end(), [](const auto& source) {
    return source.text("Type") == "InternalBattery";
  });
  if (battery == sources.end()) {
    return readings;
  }
  if (const auto percent = chargePercent(*battery)) {
    readings.percentage =
        MetricSample::valid(*percent, "IOKit · bateria interna · capacidade atual/máxima", now);
  }
  readings.onAC = battery->text("Power Source State") == "AC Power";
  readings.charging = battery->flag("Is Charging").value_or(false);
  if (readings.onAC && !readings.charging) {
    return readings;  // Full, or held: nothing runs out and nothing fills up.
  }
  if (const auto minutes = minutesLeft(*battery, readings.charging)) {
    readings.duration =
        MetricSample::valid(*minutes, "IOKit · estimativa em minutos fornecida pela bateria", now);
  }
  return readings;
}

}  // namespace vantora
