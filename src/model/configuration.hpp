// SPDX-License-Identifier: MIT
//
// The user's configuration: the modules with their metrics, widths and fonts, the
// spacing of the picture, the sampling interval, the network interface, the pause
// switch and the settings of the quota integrations. Plain values with equality.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "model/metric.hpp"
#include "model/quota_settings.hpp"
#include "model/sample.hpp"
#include "model/uuid.hpp"

namespace vantora {

enum class Alignment : std::uint8_t { left, center, right };
enum class WidthMode : std::uint8_t { fixed, automatic };

[[nodiscard]] std::string_view rawText(Alignment alignment);
[[nodiscard]] std::string_view rawText(WidthMode mode);
[[nodiscard]] std::optional<Alignment> alignmentFromRawText(std::string_view text);
[[nodiscard]] std::optional<WidthMode> widthModeFromRawText(std::string_view text);

/// An inclusive range of numbers. A NaN is outside of every range.
struct Limits {
  double least;
  double most;
  [[nodiscard]] constexpr bool contains(double value) const {
    return value >= least && value <= most;
  }
};

/// What a configuration must satisfy to be accepted, and what the settings window
/// offers. Lengths are in points.
namespace ConfigurationLimits {
inline constexpr int schemaVersion = 1;
inline constexpr std::size_t modules = 24;
inline constexpr std::size_t networkInterfaceBytes = 32;
inline constexpr Limits intervalSeconds{1, 2};
inline constexpr Limits gap{0, 24};
inline constexpr Limits horizontalPadding{0, 16};
inline constexpr Limits verticalPadding{0, 10};
inline constexpr Limits lineGap{0, 8};
inline constexpr Limits width{16, 160};
inline constexpr Limits font{8, 13};
}  // namespace ConfigurationLimits

/// One two-line block of the picture.
struct ModuleConfiguration {
  UUID id = UUID::random();
  bool enabled = true;
  MetricID top = MetricID::none;
  MetricID bottom = MetricID::none;
  WidthMode widthMode = WidthMode::fixed;
  double width = 34;
  double fontTop = 9;
  double fontBottom = 9;
  Alignment alignment = Alignment::center;
  std::optional<double> gapAfter;        ///< In place of the configuration's gap.
  std::optional<bool> hideInactiveFans;  ///< Absent counts as true.

  /// Whether the module is drawn. A module of fans alone hides while none of them has
  /// a valid reading and while all of them stand still, unless that is switched off.
  [[nodiscard]] bool isVisible(const MetricSnapshot& snapshot) const;
  bool operator==(const ModuleConfiguration&) const = default;
};

struct AppConfiguration {
  int schemaVersion = ConfigurationLimits::schemaVersion;
  int intervalSeconds = 2;  ///< Between two sampling rounds: 1 or 2.
  std::vector<ModuleConfiguration> modules = defaultModules();  ///< Left to right.
  double gap = 4;
  double horizontalPadding = 3;
  double verticalPadding = 0;
  double lineGap = 0;
  std::optional<std::string> networkInterface;  ///< Absent: the primary interface.
  bool paused = false;
  std::optional<CodexQuotaSettings> codexSettings;    ///< Absent: the type's defaults.
  std::optional<ClaudeQuotaSettings> claudeSettings;  ///< Absent: the type's defaults.

  /// Battery, network and CPU, each with a fresh identity.
  [[nodiscard]] static std::vector<ModuleConfiguration> defaultModules();

  /// The configuration unchanged when every limit holds, nothing otherwise. Nothing is
  /// ever repaired or clamped.
  [[nodiscard]] std::optional<AppConfiguration> validated() const;

  /// Puts the module at the left end. False, and nothing changes, at the most modules.
  [[nodiscard]] bool insertAtTop(ModuleConfiguration module);

  /// The metrics that the enabled modules show, without `none`.
  [[nodiscard]] MetricSet demand() const;

  /// The families of the demanded metrics: which collectors have work.
  [[nodiscard]] FamilySet families() const;

  bool operator==(const AppConfiguration&) const = default;
};

}  // namespace vantora
