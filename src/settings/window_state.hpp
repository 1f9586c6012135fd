// SPDX-License-Identifier: MIT
//
// Everything that the settings window shows: what the agent tells it. Plain values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/configuration.hpp"
#include "model/metric.hpp"
#include "model/quota_state.hpp"
#include "model/time.hpp"
#include "model/uuid.hpp"
#include "settings/login_item.hpp"

namespace vantora {

/// What a tab about a quota integration shows beside the settings.
struct QuotaSummary {
  std::string message;
  std::optional<WallTime> lastSuccess;          ///< To the millisecond.
  std::string executable;                       ///< Which program is used, or that none was found.
  std::vector<CodexQuotaCandidate> candidates;  ///< Of Codex alone.
  bool operator==(const QuotaSummary&) const = default;
};

/// The picture in the bar: ink without colour, rows from the top, without padding.
struct StatusPicture {
  double width = 0;  ///< In points.
  double scale = 1;  ///< Pixels in a point.
  int columns = 0;   ///< Pixels.
  int rows = 0;      ///< Pixels.
  std::vector<std::uint8_t> alpha;
  std::optional<std::string> warning;  ///< When something was reduced to fit.
  bool operator==(const StatusPicture&) const = default;
};

struct WindowState {
  AppConfiguration configuration;
  std::optional<std::string> networkName;
  QuotaSummary codex;
  QuotaSummary claude;
  std::optional<std::string> notice;
  LoginItemStatus loginItemStatus = LoginItemStatus::notRegistered;
  std::optional<UUID> pendingScrollID;
  StatusPicture picture;
};

/// The parts of a WindowState that change by themselves.
enum class WindowField : std::uint8_t {
  configuration,
  networkName,
  codex,
  claude,
  notice,
  loginItemStatus,
  pendingScrollID,
  picture,
};
using WindowFields = EnumSet<WindowField>;

inline constexpr WindowFields allWindowFields{
    WindowField::configuration,   WindowField::networkName, WindowField::codex,
    WindowField::claude,          WindowField::notice,      WindowField::loginItemStatus,
    WindowField::pendingScrollID, WindowField::picture};

/// The fields in which the two differ.
[[nodiscard]] WindowFields differences(const WindowState& one, const WindowState& other);

}  // namespace vantora
