// SPDX-License-Identifier: MIT
//
// Everything that the settings window shows: what the agent sent. Plain values.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "model/configuration.hpp"
#include "model/metric.hpp"
#include "model/network_link.hpp"
#include "model/quota_state.hpp"
#include "model/sample.hpp"
#include "model/time.hpp"
#include "model/uuid.hpp"
#include "settings/login_item.hpp"
#include "settings/undoable_edit.hpp"

namespace vantora {

/// What a tab about a quota integration shows beside the settings.
struct QuotaSummary {
  std::string message;
  std::optional<WallTime> lastSuccess;          ///< To the millisecond.
  std::string executable;                       ///< Which program is used, or that none was found.
  std::vector<CodexQuotaCandidate> candidates;  ///< Of Codex alone.
  bool needsLogin = false;                      ///< Of Codex alone: the browser would help.
  bool operator==(const QuotaSummary&) const = default;
};

/// A picture: ink without colour, rows from the top, without padding.
struct PictureInk {
  double scale = 1;  ///< Pixels in a point.
  int columns = 0;   ///< Pixels.
  int rows = 0;      ///< Pixels.
  std::vector<std::uint8_t> alpha;
  bool operator==(const PictureInk&) const = default;
};

/// The place of a visible module in the picture, in points from its left edge.
struct PictureBlock {
  UUID id;
  double left = 0;
  double width = 0;
  bool operator==(const PictureBlock&) const = default;
};

/// The picture in the bar: ink without colour, rows from the top, without padding.
struct StatusPicture {
  double width = 0;  ///< In points.
  double scale = 1;  ///< Pixels in a point.
  int columns = 0;   ///< Pixels.
  int rows = 0;      ///< Pixels.
  std::vector<std::uint8_t> alpha;
  std::optional<std::string> warning;  ///< When something was reduced to fit.
  std::vector<PictureBlock> blocks{};  ///< The visible modules, from the left.
  std::string spoken{};                ///< What a screen reader says of the picture.
  /// The same picture with twice as many pixels in a point, for showing it larger. Nothing
  /// where that would be too many.
  std::optional<PictureInk> enlarged{};
  bool operator==(const StatusPicture&) const = default;
};

/// What the bar shows for a metric, and why.
struct MetricReading {
  MetricID metric = MetricID::none;
  std::string text;  ///< As in the bar.
  Quality quality = Quality::unavailable;
  std::string source;                 ///< Where the reading came from or why there is none.
  std::string reason;                 ///< Why there is no fresh reading; empty when there is one.
  std::optional<WallTime> sampledAt;  ///< To the millisecond.
  bool operator==(const MetricReading&) const = default;
};

/// The longest text of a reading that is sent, in bytes.
inline constexpr std::size_t maxReadingTextBytes = 512;

/// Of a panel that keeps one square of the picture.
struct SquareChoice {
  std::optional<UUID> module;  ///< The user's, or nothing where it is left to the agent.
  bool operator==(const SquareChoice&) const = default;
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
  std::optional<UndoableEdit> undoable;
  std::vector<NetworkLink> links;       ///< Empty until the window has asked for them.
  std::string backupPath;               ///< Of the backup of the configuration document.
  std::vector<MetricReading> readings;  ///< Of the metrics that active modules show.
  std::optional<SquareChoice> square;   ///< Nothing where the panel shows more than a square.
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
  undoable,
  links,
  backupPath,
  readings,
  square,
};
using WindowFields = EnumSet<WindowField>;

inline constexpr WindowFields allWindowFields{
    WindowField::configuration,   WindowField::networkName, WindowField::codex,
    WindowField::claude,          WindowField::notice,      WindowField::loginItemStatus,
    WindowField::pendingScrollID, WindowField::picture,     WindowField::undoable,
    WindowField::links,           WindowField::backupPath,  WindowField::readings,
    WindowField::square};

/// The fields in which the two differ. Fresh readings that differ only in their time count as
/// equal: a value that stays the same is read again every second.
[[nodiscard]] WindowFields differences(const WindowState& one, const WindowState& other);

}  // namespace vantora
