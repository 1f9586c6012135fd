// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace vantora {

/// Follows the scales of a Wayland session's screens: the pixels in a point, rounded up where they
/// are a fraction (wl_output.scale of wayland.xml). Lives on the loop's thread.
class ScreenScales {
 public:
  explicit ScreenScales(uv_loop_t& loop);
  ~ScreenScales();
  ScreenScales(const ScreenScales&) = delete;
  ScreenScales& operator=(const ScreenScales&) = delete;

  /// Gets the largest scale of all screens when it is known and whenever it has changed; nothing
  /// once the compositor is gone. From the loop.
  std::function<void(std::optional<int> scale)> onChange;

  /// Connects to the compositor of `display`, a name or a path as in WAYLAND_DISPLAY, unless it is
  /// connected. Without one nothing is ever reported. Waits for no answer.
  void follow(const std::string& display);

 private:
  class Connection;

  void lose();

  uv_loop_t& loop_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace vantora
