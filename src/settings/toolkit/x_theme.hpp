// SPDX-License-Identifier: MIT
#pragma once

#include <xcb/xcb.h>

#include <string>

namespace vantora {

/// The name of the desktop's theme as the settings manager of an X11 screen publishes it
/// ("Net/ThemeName"): GNOME's, MATE's, Xfce's and Cinnamon's do. Main thread.
class XTheme {
 public:
  /// Looks for the manager and asks for its changes on `connection`, which must outlive this.
  /// Waits for the server. A manager that starts later is not seen.
  XTheme(xcb_connection_t* connection, int screen);

  /// Empty where there is no manager, or none of these settings. Waits for the server.
  [[nodiscard]] std::string name() const;

  /// Whether the name may be another after this event of the connection's.
  [[nodiscard]] bool isChangedBy(const xcb_generic_event_t& event) const;

 private:
  xcb_connection_t* connection_;
  xcb_atom_t property_;
  xcb_window_t manager_;
};

}  // namespace vantora
