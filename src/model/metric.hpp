// SPDX-License-Identifier: MIT
//
// The closed catalogue of metrics that a module line can show. The raw text of a
// metric is its name in the configuration document; its title is what the settings
// window lists. Plain values, usable from any thread.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>

namespace vantora {

enum class MetricFamily : std::uint8_t { cpu, network, battery, sensors, codex, claude };

enum class MetricID : std::uint8_t {
  none,
  batteryPercent,
  batteryTime,
  batteryTemperature,
  upload,
  download,
  cpuUsage,
  cpuTemperature,
  fan1Percent,
  fan2Percent,
  fan1RPM,
  fan2RPM,
  adapterWatts,
  inputWatts,
  batteryChargeWatts,
  codexWeeklyPercent,
  codexWeeklyReset,
  claudeWeeklyPercent,
  claudeSessionPercent,
};

inline constexpr std::size_t metricCount = 19;

/// Every metric, in the order in which pickers list them.
inline constexpr std::array<MetricID, metricCount> allMetrics = [] {
  std::array<MetricID, metricCount> all{};
  for (std::size_t index = 0; index < metricCount; ++index) {
    all[index] = static_cast<MetricID>(index);
  }
  return all;
}();

/// The identifier under which the configuration document stores the metric.
[[nodiscard]] std::string_view id(MetricID metric);

/// The metric with this identifier; nothing for any other text.
[[nodiscard]] std::optional<MetricID> metricFromId(std::string_view id);

/// The Portuguese label that pickers and spoken descriptions use.
[[nodiscard]] std::string_view title(MetricID metric);

/// Who produces the metric. Nothing for `none` and for the two metrics that no
/// source produces yet (`inputWatts`, `batteryChargeWatts`): they are never sampled.
[[nodiscard]] std::optional<MetricFamily> family(MetricID metric);

[[nodiscard]] bool isFan(MetricID metric);

/// The widest text that the metric can ever show; it sizes fixed columns.
[[nodiscard]] std::string_view reservedText(MetricID metric);

/// A set of values of an enumeration with at most 32 cases, in one word.
template <typename Enum>
class EnumSet {
 public:
  class Iterator {
   public:
    explicit constexpr Iterator(std::uint32_t rest) : rest_(rest) {}
    constexpr Enum operator*() const { return static_cast<Enum>(std::countr_zero(rest_)); }
    constexpr Iterator& operator++() {
      rest_ &= rest_ - 1;
      return *this;
    }
    constexpr bool operator==(const Iterator&) const = default;

   private:
    std::uint32_t rest_;
  };

  constexpr EnumSet() = default;
  constexpr EnumSet(std::initializer_list<Enum> values) {
    for (const Enum value : values) {
      insert(value);
    }
  }

  constexpr void insert(Enum value) { bits_ |= bit(value); }
  constexpr void erase(Enum value) { bits_ &= ~bit(value); }
  [[nodiscard]] constexpr bool contains(Enum value) const { return (bits_ & bit(value)) != 0; }
  [[nodiscard]] constexpr bool intersects(EnumSet other) const {
    return (bits_ & other.bits_) != 0;
  }
  [[nodiscard]] constexpr bool empty() const { return bits_ == 0; }
  [[nodiscard]] constexpr std::size_t size() const {
    return static_cast<std::size_t>(std::popcount(bits_));
  }
  /// Ascending, in declaration order.
  [[nodiscard]] constexpr Iterator begin() const { return Iterator(bits_); }
  [[nodiscard]] constexpr Iterator end() const { return Iterator(0); }
  constexpr bool operator==(const EnumSet&) const = default;

 private:
  static constexpr std::uint32_t bit(Enum value) {
    return std::uint32_t{1} << static_cast<std::uint32_t>(value);
  }
  std::uint32_t bits_ = 0;
};

using MetricSet = EnumSet<MetricID>;
using FamilySet = EnumSet<MetricFamily>;

/// The metrics of `metrics` that `wanted` produces.
[[nodiscard]] MetricSet metricsOfFamily(MetricSet metrics, MetricFamily wanted);

}  // namespace vantora
