// SPDX-License-Identifier: MIT
//
// The display's end of the docked window: does what XEmbedWindow asks for, and reports
// the server's events.
#pragma once

#include <uv.h>
#include <xcb/xcb.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "platform/linux/x11_tray/tray_client.hpp"
#include "platform/linux/x11_tray/tray_event.hpp"
#include "status/bitmap.hpp"

namespace vantora {

/// Made, used and destroyed on the thread of `loop`. Every call may wait for the server.
class TrayWindow {
 public:
  using Report = std::function<void(const TrayEvent& event)>;

  TrayWindow(uv_loop_t& loop, Report report);
  ~TrayWindow();
  TrayWindow(const TrayWindow&) = delete;
  TrayWindow& operator=(const TrayWindow&) = delete;

  /// Connects to `display`, as in DISPLAY. False where there is none.
  [[nodiscard]] bool open(const std::string& display);

  /// Asks the tray that runs now to take a new window in, in place of one that is there.
  /// In points; a vertical tray is asked for a square. Reports TrayAsked or TrayMissing.
  void dock(double width, double height);
  void undock();
  /// Reports TraySeen or TrayMissing, and later TrayChanged. Docks nothing.
  void look();
  /// In pixels.
  void resize(int width, int height);
  /// Reports WindowMeasured.
  void measure();
  /// Reports WindowDrawn. A picture that is not as large as the window is left out.
  void draw(const AlphaBitmap& picture);

 private:
  struct Pump;

  void readEvents();
  void prepare();
  void handleEvent(const xcb_generic_event_t& event);
  void handleProperty(const xcb_property_notify_event_t& event);
  void reparented(const xcb_reparent_notify_event_t& event);
  void resized(int width, int height);
  void released(const xcb_button_release_event_t& event);
  void lose();

  uv_loop_t& loop_;
  Report report_;
  TrayClient client_;
  Pump* pump_ = nullptr;  // freed by libuv's close callbacks
  std::pair<int, int> size_;
  std::optional<xcb_button_t> pressed_;  // inside the window, and still held
};

}  // namespace vantora
