// SPDX-License-Identifier: MIT
#include "status/metric_formatter.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "quota/claude/claude_quota_formatter.hpp"
#include "quota/codex/codex_quota_formatter.hpp"

namespace vantora::MetricFormatter {
namespace {

constexpr std::string_view dash = "—";
constexpr std::string_view quotaDash = "--";
constexpr double bytesPerMegabyte = 1e6;
/// Beyond this a double may not fit a 64-bit integer. No reading comes near it.
constexpr double maxWhole = 9e18;

std::string whole(double value, std::string_view unit) {
  if (!(std::fabs(value) <= maxWhole)) {
    return std::string(dash);
  }
  // std::round takes halves away from zero; through an integer, "-0" is "0".
  std::string text = std::to_string(static_cast<std::int64_t>(std::round(value)));
  text += unit;
  return text;
}

/// The hundredths of a number from 0 to below 1, rounded as "%.2f" does: the exact binary value
/// decides, a tie goes to the even digit. printf itself takes as long as all other texts together.
int hundredths(double value) {
  constexpr double scale = 100;
  const int below = static_cast<int>(value * scale);
  // Rounded once, so that its sign is that of the exact difference.
  const double aboveMiddle = std::fma(value, scale, -(below + 0.5));
  return aboveMiddle > 0 || (aboveMiddle == 0 && below % 2 != 0) ? below + 1 : below;
}

std::string watts(double value) {
  constexpr double maxShown = 9999.5;
  return value > maxShown ? ">9999W" : whole(value, "W");
}

std::string hoursAndMinutes(double value) {
  const double rounded = std::ceil(value);
  if (!(rounded >= 0.0 && rounded <= maxWhole)) {
    return std::string(dash);
  }
  constexpr std::int64_t minutesPerHour = 60;
  const auto minutes = static_cast<std::int64_t>(rounded);
  const std::int64_t rest = minutes % minutesPerHour;
  std::string text = std::to_string(minutes / minutesPerHour);
  text += ':';
  text += static_cast<char>('0' + rest / 10);
  text += static_cast<char>('0' + rest % 10);
  return text;
}

std::string missing(MetricID metric, const MetricSnapshot& snapshot) {
  // On adapter power with a full or held battery there is no time to show.
  const bool isHeld = snapshot.batteryOnAC && !snapshot.batteryCharging;
  return metric == MetricID::batteryTime && isHeld ? "AC" : std::string(dash);
}

std::string reading(MetricID metric, double value) {
  switch (metric) {
    case MetricID::batteryPercent:
    case MetricID::cpuUsage:
    case MetricID::fan1Percent:
    case MetricID::fan2Percent:
      return whole(value, "%");
    case MetricID::batteryTemperature:
    case MetricID::cpuTemperature:
      return whole(value, "°C");
    case MetricID::fan1RPM:
    case MetricID::fan2RPM:
      return whole(value, {});
    case MetricID::adapterWatts:
    case MetricID::inputWatts:
    case MetricID::batteryChargeWatts:
      return watts(value);
    case MetricID::batteryTime:
      return hoursAndMinutes(value);
    case MetricID::upload:
    case MetricID::download:
      return compactRate(value);
    case MetricID::none:
    case MetricID::codexWeeklyPercent:
    case MetricID::codexWeeklyReset:
    case MetricID::claudeWeeklyPercent:
    case MetricID::claudeSessionPercent:
      break;
  }
  return {};
}

}  // namespace

std::string text(MetricID metric, const MetricSnapshot& snapshot, WallTime now) {
  switch (metric) {
    case MetricID::codexWeeklyPercent:
    case MetricID::codexWeeklyReset:
      return CodexQuotaFormatter::text(metric, snapshot.codex, now).value_or(std::string());
    case MetricID::claudeWeeklyPercent:
    case MetricID::claudeSessionPercent:
      return ClaudeQuotaFormatter::text(metric, snapshot.claude, now);
    case MetricID::none:
      return {};
    default:
      break;
  }
  const MetricSample& sample = snapshot[metric];
  const bool isUsable =
      sample.quality == Quality::valid && sample.value && std::isfinite(*sample.value);
  return isUsable ? reading(metric, *sample.value) : missing(metric, snapshot);
}

bool isReading(std::string_view text) {
  return !text.empty() && text != dash && text != quotaDash;
}

std::string compactRate(double bytesPerSecond) {
  if (!std::isfinite(bytesPerSecond) || bytesPerSecond < 0.0) {
    return std::string(dash);
  }
  // Added to zero, a negative zero loses its sign.
  const double megabytes = bytesPerSecond / bytesPerMegabyte + 0.0;
  if (megabytes < 1.0) {
    // The cap keeps "1,00M", which is wider, from ever appearing.
    constexpr double maxWithFraction = 0.99;
    const int fraction = hundredths(std::min(megabytes, maxWithFraction));
    std::string text = "0,";
    text += static_cast<char>('0' + fraction / 10);
    text += static_cast<char>('0' + fraction % 10);
    text += 'M';
    return text;
  }
  constexpr double maxShown = 999.5;
  return megabytes >= maxShown ? ">999M" : whole(megabytes, "M");
}

}  // namespace vantora::MetricFormatter
