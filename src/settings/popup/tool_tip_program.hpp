// SPDX-License-Identifier: MIT
#pragma once

#include <QTimer>
#include <functional>
#include <string_view>

#include "process/line_framer.hpp"
#include "settings/conversation/menu_protocol.hpp"

namespace vantora {

/// vantora-settings as a tool tip: shows the one that the agent sends
/// (docs/menu-protocol.md).
class ToolTipProgram {
 public:
  /// How long a tool tip is shown unless the agent hides it first.
  static constexpr int duration = 10'000;  // milliseconds

  /// `onEnd` comes when the tool tip is gone, with status 0, or the agent said what is
  /// none, with 1. At most once.
  explicit ToolTipProgram(std::function<void(int status)> onEnd);
  ToolTipProgram(const ToolTipProgram&) = delete;
  ToolTipProgram& operator=(const ToolTipProgram&) = delete;

  void receive(std::string_view bytes);

 private:
  void show(const ToolTipContent& content);
  void end(int status);

  std::function<void(int status)> onEnd_;
  LineFramer framer_{MenuProtocol::menuReadLimit};
  QTimer endTimer_;
  bool hasShown_ = false;
  bool hasEnded_ = false;
};

/// What main does for MenuProtocol::toolTipArgument. Returns the exit status.
[[nodiscard]] int runToolTipProgram(int argc, char** argv);

}  // namespace vantora
