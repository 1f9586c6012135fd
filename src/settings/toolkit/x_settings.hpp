// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace vantora {

/// The text of the setting `name` in what a settings manager of X11 publishes, the property
/// _XSETTINGS_SETTINGS (XSETTINGS 0.5). Nothing where the setting is missing or no text, or where
/// the bytes end before it.
[[nodiscard]] std::optional<std::string> xSettingText(std::span<const std::uint8_t> property,
                                                      std::string_view name);

}  // namespace vantora
