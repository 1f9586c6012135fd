// SPDX-License-Identifier: MIT
//
// The menu beside a docked window: a small window of our own on the same display, with
// pointer and keyboard to itself while it is open.
#pragma once

#include <xcb/xcb.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <optional>

#include "platform/linux/tray_client.hpp"
#include "platform/linux/tray_menu_picture.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// What a menu stands beside, in pixels of the screen.
struct TrayMenuAnchor {
  int left = 0;
  int top = 0;
  int bottom = 0;
};

/// Open for as long as it lives. Lives on the main thread.
class TrayMenu {
 public:
  /// Called once, with the chosen entry or with nothing; from inside of handle(). The
  /// menu may be destroyed afterwards, not during the call.
  using OnEnd = std::function<void(std::optional<std::size_t> entry)>;

  /// Opens the menu below the anchor or, where the screen ends, above it.
  TrayMenu(const TrayClient& client, TrayMenuLayout layout, TextEngine& engine,
           TrayMenuAnchor anchor, OnEnd onEnd);
  ~TrayMenu();
  TrayMenu(const TrayMenu&) = delete;
  TrayMenu& operator=(const TrayMenu&) = delete;

  void handle(const xcb_generic_event_t& event);

 private:
  void place(const TrayMenuAnchor& anchor);
  void grab();
  void draw();
  void choose(std::optional<std::size_t> entry);
  void pressed(xcb_keycode_t key);
  [[nodiscard]] std::optional<std::size_t> entryAt(int x, int y) const;
  [[nodiscard]] bool isInside(int x, int y) const;
  void end(std::optional<std::size_t> entry);

  const TrayClient& client_;
  TrayMenuLayout layout_;
  AlphaBitmap labels_;
  OnEnd onEnd_;
  xcb_window_t window_ = XCB_NONE;
  xcb_gcontext_t context_ = XCB_NONE;
  std::optional<std::size_t> chosen_;
  bool hasEnded_ = false;
};

}  // namespace vantora
