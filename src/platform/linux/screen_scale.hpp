// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <string>

namespace vantora {

/// Where a session's screens can be asked: as in WAYLAND_DISPLAY and DISPLAY, empty where
/// there is none.
struct ScreenAddresses {
  std::string wayland;
  std::string x11;
};

/// The whole number of pixels in a point on the finest of the session's screens, 1 to 4:
/// the greatest scale of wl_output (a fractional one rounded up, as the compositor tells
/// it), and Xft.dpi among the X server's resources. 1 where nobody tells.
///
/// Waits for the answers. Call it through lookUpScreenScaleApart().
[[nodiscard]] int lookUpScreenScale(const ScreenAddresses& addresses);

/// The same, asked by a child as answerApart() does it. Screens that do not answer within
/// `limit` count as ones that tell nothing.
[[nodiscard]] int lookUpScreenScaleApart(const ScreenAddresses& addresses,
                                         std::chrono::milliseconds limit = std::chrono::seconds{2});

}  // namespace vantora
