// SPDX-License-Identifier: MIT
//
// How readings and modules are put into words in the window. Pure.
#pragma once

#include <QString>
#include <optional>
#include <vector>

#include "model/configuration.hpp"
#include "model/time.hpp"
#include "settings/conversation/window_state.hpp"

namespace vantora::ReadingText {

/// A metric in two or three words, for a line that has no room for its title.
[[nodiscard]] QString shortName(MetricID metric);

/// What tells a module from the others: "Codex · semanal", "Upload e Download".
[[nodiscard]] QString moduleName(const ModuleConfiguration& module);

/// The reading of the metric, or null.
[[nodiscard]] const MetricReading* find(const std::vector<MetricReading>& readings,
                                        MetricID metric);

/// The text of the bar, followed by the reason where there is one: "87%",
/// "— Bateria interna indisponível", "OFF · Integração desativada.".
[[nodiscard]] QString line(const MetricReading& reading);

/// The same with where it came from and when it was read, on lines of their own.
[[nodiscard]] QString details(const MetricReading& reading);

/// The instant in the user's time zone, to the second; a dash without one.
[[nodiscard]] QString time(const std::optional<WallTime>& instant);

/// Whether the metric was looked for on this machine and is not there. A quota is no part of
/// the machine.
[[nodiscard]] bool isMissing(const MetricReading& reading);

}  // namespace vantora::ReadingText
