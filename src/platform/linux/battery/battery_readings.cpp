// SPDX-License-Identifier: MIT
//
// What a machine's power supplies add up to.
#include <algorithm>
#include <cmath>
#include <string>

#include "platform/linux/battery/power_supply.hpp"

namespace vantora {
namespace {

using Status = PowerSupply::Status;

constexpr double microToUnit = 1e-6;
constexpr double tooManyMinutes = 10'000;
// The counters and the capacity of one battery differ by some points, because they are read at
// different moments or count a worn battery's full charge differently. Beyond this many points
// the counters are wrong: on Apple silicon 39 % was seen beside a capacity of 96 %.
constexpr double maxPointsFromCapacity = 20;

// Full batteries were seen to report 103 % and 106 %; what is beyond this is no content.
constexpr double maxOverfull = 1.1;

/// How full the batteries are, in one unit for all of them.
struct Content {
  enum class Unit { energy, charge, percent };
  Unit unit = Unit::percent;
  double now = 0;
  double full = 0;
  double limit = 0;          ///< Where charging ends: below `full` if people set a limit.
  bool isCorrected = false;  ///< The counters are left aside because the capacity contradicts.
};

double limitFraction(const PowerSupply& battery) {
  const std::int64_t percent = battery.chargeLimit.value_or(100);
  return percent > 0 && percent < 100 ? static_cast<double>(percent) / 100 : 1;
}

bool contradictsCapacity(const PowerSupply& battery, double percent) {
  const auto capacity = static_cast<double>(battery.capacity.value_or(-1));
  return capacity >= 0 && capacity <= 100 * maxOverfull &&
         std::abs(percent - capacity) > maxPointsFromCapacity;
}

std::optional<Content> content(const PowerSupply& battery, Content::Unit unit) {
  PowerSupply::Reading now;
  PowerSupply::Reading full;
  double factor = 1;
  switch (unit) {
    case Content::Unit::energy:
      now = battery.energyNow;
      full = battery.energyFull;
      if (!now && battery.chargeNow && battery.voltage.value_or(0) > 0) {
        now = battery.chargeNow;
        full = battery.chargeFull;
        factor = static_cast<double>(*battery.voltage) * microToUnit;
      }
      break;
    case Content::Unit::charge:
      now = battery.chargeNow;
      full = battery.chargeFull;
      break;
    case Content::Unit::percent:
      now = battery.capacity;
      full = 100;
      break;
  }
  // Broken batteries report a full charge of 0, and worn ones somewhat more than full.
  if (!now || !full || *full <= 0 || *now < 0 ||
      static_cast<double>(*now) > static_cast<double>(*full) * maxOverfull) {
    return std::nullopt;
  }
  Content one{unit, static_cast<double>(std::min(*now, *full)) * factor,
              static_cast<double>(*full) * factor};
  one.limit = one.full * limitFraction(battery);
  one.isCorrected = contradictsCapacity(battery, one.now * 100 / one.full);
  return one;
}

/// Of all the batteries in the first unit that all of them report.
std::optional<Content> content(const std::vector<const PowerSupply*>& batteries) {
  using enum Content::Unit;
  bool isCorrected = false;
  // The charge comes first: where all of them tell it there is nothing to convert.
  for (const Content::Unit unit : {charge, energy, percent}) {
    Content sum{unit};
    const bool all = std::all_of(batteries.begin(), batteries.end(), [&](const auto* battery) {
      const auto one = content(*battery, unit);
      if (!one || one->isCorrected) {
        isCorrected = isCorrected || one;
        return false;
      }
      sum.now += one->now;
      sum.full += one->full;
      sum.limit += one->limit;
      return true;
    });
    sum.isCorrected = isCorrected;
    if (all) {
      return sum;
    }
  }
  return std::nullopt;
}

/// How fast the battery fills or empties, per hour in the content's unit. Its direction is
/// the status's affair: drivers disagree about the sign.
std::optional<double> flow(const PowerSupply& battery, Content::Unit unit) {
  const auto magnitude = [](PowerSupply::Reading reading) {
    return reading ? std::optional(std::abs(static_cast<double>(*reading))) : std::nullopt;
  };
  const auto power = magnitude(battery.powerNow);
  const auto current = magnitude(battery.currentNow);
  const double volts = static_cast<double>(battery.voltage.value_or(0)) * microToUnit;
  if (unit == Content::Unit::energy) {
    return power || !current || volts <= 0 ? power : std::optional(*current * volts);
  }
  if (unit == Content::Unit::charge) {
    return current || !power || volts <= 0 ? current : std::optional(*power / volts);
  }
  return std::nullopt;
}

bool takesPart(const PowerSupply& battery, bool charging) {
  return charging ? battery.status == Status::charging
                  : battery.status == Status::discharging || battery.status == Status::unknown;
}

std::optional<double> believable(double minutes) {
  return minutes > 0 && minutes < tooManyMinutes ? std::optional(minutes) : std::nullopt;
}

/// Drivers write 0 for "not known yet", as they have nothing else to write.
std::optional<double> driversMinutes(const std::vector<const PowerSupply*>& batteries,
                                     bool charging) {
  if (batteries.size() != 1) {
    return std::nullopt;  // What each of them would take alone says little about all.
  }
  if (charging && limitFraction(*batteries[0]) < 1) {
    return std::nullopt;  // The driver's estimate goes to full, and charging ends before.
  }
  const auto seconds = charging ? batteries[0]->timeToFull : batteries[0]->timeToEmpty;
  return seconds ? believable(static_cast<double>(*seconds) / 60) : std::nullopt;
}

std::optional<double> minutesFromFlow(const std::vector<const PowerSupply*>& batteries,
                                      const Content& content, bool charging) {
  double sum = 0;
  for (const PowerSupply* battery : batteries) {
    if (!takesPart(*battery, charging)) {
      continue;  // Of two batteries most laptops use one at a time.
    }
    const auto one = flow(*battery, content.unit);
    if (!one) {
      return std::nullopt;
    }
    sum += *one;
  }
  const double hours = (charging ? content.limit - content.now : content.now) / sum;
  return sum > 0 ? believable(hours * 60) : std::nullopt;
}

/// "bateria interna", or "2 baterias internas".
std::string named(std::size_t batteries) {
  return batteries == 1 ? "bateria interna" : std::to_string(batteries) + " baterias internas";
}

std::string contentSource(const Content& content, std::size_t batteries) {
  const char* how = content.unit == Content::Unit::energy   ? "energia atual/máxima"
                    : content.unit == Content::Unit::charge ? "carga atual/máxima"
                    : content.isCorrected ? "capacidade informada (os contadores de carga divergem)"
                                          : "capacidade informada";
  return "Linux power_supply · " + named(batteries) + " · " + how;
}

MetricSample duration(const std::vector<const PowerSupply*>& batteries,
                      const std::optional<Content>& content, bool charging, WallTime now) {
  if (const auto minutes = driversMinutes(batteries, charging)) {
    return MetricSample::valid(
        *minutes, "Linux power_supply · estimativa em minutos fornecida pelo driver da bateria",
        now);
  }
  if (content) {
    if (const auto minutes = minutesFromFlow(batteries, *content, charging)) {
      return MetricSample::valid(*minutes,
                                 charging
                                     ? "Linux power_supply · estimativa pela potência de carga"
                                     : "Linux power_supply · estimativa pela potência consumida",
                                 now);
    }
  }
  return BatteryReadings().duration;
}

/// What the adapter can deliver, in watts: the most voltage by the most current, as the
/// kernel says it of USB supplies.
std::optional<double> ratedWatts(const PowerSupply& adapter) {
  if (adapter.voltageMax.value_or(0) <= 0 || adapter.currentMax.value_or(0) <= 0) {
    return std::nullopt;
  }
  return static_cast<double>(*adapter.voltageMax) * microToUnit *
         (static_cast<double>(*adapter.currentMax) * microToUnit);
}

/// What the machine lets itself draw, in watts. Apple's controller sets it to what the
/// adapter negotiated.
std::optional<double> limitWatts(const PowerSupply& adapter) {
  return adapter.inputPowerLimit.value_or(0) > 0
             ? std::optional(static_cast<double>(*adapter.inputPowerLimit) * microToUnit)
             : std::nullopt;
}

MetricSample adapterWatts(const std::vector<PowerSupply>& supplies, WallTime now) {
  std::optional<double> rated;
  std::optional<double> limit;
  for (const PowerSupply& supply : supplies) {
    if (supply.isAdapter() && supply.online) {
      rated = std::max(rated, ratedWatts(supply));
      limit = std::max(limit, limitWatts(supply));
    }
  }
  if (rated) {
    return MetricSample::valid(*rated,
                               "Linux power_supply · potência máxima informada do adaptador", now);
  }
  if (limit) {
    return MetricSample::valid(
        *limit, "Linux power_supply · limite de entrada em vigor para o adaptador", now);
  }
  return BatteryReadings().adapterWatts;
}

bool isOnAdapter(const std::vector<PowerSupply>& supplies,
                 const std::vector<const PowerSupply*>& batteries) {
  const auto isAdapter = [](const PowerSupply& supply) { return supply.isAdapter(); };
  const bool hasAdapter = std::any_of(supplies.begin(), supplies.end(), isAdapter);
  if (std::any_of(supplies.begin(), supplies.end(),
                  [&](const PowerSupply& supply) { return isAdapter(supply) && supply.online; })) {
    return true;
  }
  // Some tablets show no adapter at all, and some laptops only the one of the barrel socket
  // while USB-C feeds them; the battery then shows whether it is in use. One that does not
  // charge may be idle beside another one, so this shows nothing where there are adapters.
  const auto isFed = [&](const PowerSupply* battery) {
    return battery->status == Status::charging || battery->status == Status::full ||
           (battery->status == Status::notCharging && !hasAdapter);
  };
  const auto serves = [](const PowerSupply* battery) {
    return battery->status == Status::discharging;
  };
  return std::any_of(batteries.begin(), batteries.end(), isFed) &&
         std::none_of(batteries.begin(), batteries.end(), serves);
}

}  // namespace

BatteryReadings batteryReadings(const std::vector<PowerSupply>& supplies, WallTime now) {
  BatteryReadings readings;
  std::vector<const PowerSupply*> batteries;
  for (const PowerSupply& supply : supplies) {
    if (supply.isMachineBattery()) {
      batteries.push_back(&supply);
    }
  }
  readings.adapterWatts = adapterWatts(supplies, now);
  readings.onAC = isOnAdapter(supplies, batteries);
  if (batteries.empty()) {
    return readings;
  }
  readings.charging = std::any_of(batteries.begin(), batteries.end(), [](const auto* battery) {
    return battery->status == Status::charging;
  });
  const auto filled = content(batteries);
  readings.percentage =
      filled ? MetricSample::valid(filled->now * 100 / filled->full,
                                   contentSource(*filled, batteries.size()), now)
             : MetricSample::unavailable("Linux power_supply · carga da bateria interna ilegível");
  if (readings.onAC && !readings.charging) {
    return readings;  // Full, or held: nothing runs out and nothing fills up.
  }
  readings.duration = duration(batteries, filled, readings.charging, now);
  return readings;
}

}  // namespace vantora
