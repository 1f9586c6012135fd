// SPDX-License-Identifier: MIT
//
// A system tray for tests ("System Tray Protocol", "XEmbed"): a client of its own that
// owns the selection, embeds the windows that ask for it, and gives them as much room as
// its script says.
#pragma once

#include <xcb/xcb.h>

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantora::test {

/// Gives the display's X resources, as xrdb does.
void setResources(const std::string& display, const std::string& resources);

class ScriptedTray {
 public:
  struct Script {
    bool embeds = true;
    int widest = 10'000;         ///< What a window gets at most, in pixels.
    bool isTranslucent = false;  ///< Whether it publishes a visual of 32 bits.
    bool isVertical = false;
    /// What it writes in, as _NET_SYSTEM_TRAY_COLORS; none published when empty.
    std::optional<std::uint16_t> grey = std::nullopt;
  };

  /// Starts at once, and announces itself to clients that wait for a tray.
  ScriptedTray(const std::string& display, Script script);
  /// Goes with everything in it.
  ~ScriptedTray();
  ScriptedTray(const ScriptedTray&) = delete;
  ScriptedTray& operator=(const ScriptedTray&) = delete;

  /// Does what the events ask for that have arrived.
  void handleEvents();

  /// The windows that asked to be docked, in order.
  [[nodiscard]] const std::vector<xcb_window_t>& requests() const { return requests_; }
  /// The latest of them; there must be one.
  [[nodiscard]] xcb_window_t window() const { return requests_.back(); }

  /// Takes the latest window in, late.
  void embed();
  /// Gives the latest window back to the root.
  void giveBack();
  /// Gives windows this much at most from now on, the latest one at once.
  void setWidest(int pixels);
  void setGrey(std::uint16_t grey);
  /// Arranges its icons in a column, or in a row again.
  void turn(bool isVertical);
  /// Wipes the latest window, as another one that stood over it would.
  void wipe();
  /// A button goes down or up over the latest window, at a place in it.
  void press(int button, int x, int y);
  void release(int button, int x, int y, std::uint32_t time = 0);
  /// The pointer comes to the latest window, or leaves it; because of a grab that ends or
  /// begins, or by itself.
  void enter(int x, int y, xcb_notify_mode_t mode = XCB_NOTIFY_MODE_NORMAL);
  void leave(xcb_notify_mode_t mode = XCB_NOTIFY_MODE_NORMAL);

  /// What the server says of the latest window.
  [[nodiscard]] bool isThere();
  [[nodiscard]] bool isMapped();
  [[nodiscard]] bool isEmbedded();
  [[nodiscard]] std::pair<int, int> size();
  [[nodiscard]] std::pair<int, int> place();  ///< On the root window.
  /// Rows from the top; empty when it is not visible.
  [[nodiscard]] std::vector<std::uint32_t> pixels();
  [[nodiscard]] std::string text(const char* property);
  /// Of its _XEMBED_INFO: version and flags.
  [[nodiscard]] std::vector<std::uint32_t> info();

 private:
  [[nodiscard]] xcb_atom_t atom(const std::string& name);
  void publish();
  void setColours();
  void setOrientation();
  void docked(xcb_window_t window);
  void resize(xcb_window_t window, int width, int height);
  void sendCrossing(std::uint8_t type, int x, int y, xcb_notify_mode_t mode);
  void sendButton(std::uint8_t type, int button, int x, int y, std::uint32_t time);
  [[nodiscard]] xcb_visualid_t translucentVisual() const;

  Script script_;
  xcb_connection_t* x_ = nullptr;
  xcb_screen_t* screen_ = nullptr;
  std::map<std::string, xcb_atom_t> atoms_;
  xcb_window_t owner_ = XCB_NONE;
  std::map<xcb_window_t, xcb_window_t> sockets_;  // by the window that each holds
  std::vector<xcb_window_t> requests_;
};

}  // namespace vantora::test
