// SPDX-License-Identifier: MIT
//
// A window docked in an X11 system tray (freedesktop's "System Tray Protocol" and
// "XEmbed"), for panels that keep such a window as wide as it asks to be. It finds the
// tray, docks, docks again when the tray restarts, and tells when the tray gives it less
// room than it needs.
#pragma once

#include <uv.h>
#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/linux/tray_client.hpp"
#include "runtime/task_queue.hpp"
#include "settings/menu_content.hpp"
#include "status/bitmap.hpp"

namespace vantora {

/// Lives on the main thread. Calls to the X server block for a round trip while docking
/// and never afterwards.
class XEmbedWindow {
 public:
  enum class State : std::uint8_t {
    absent,    ///< No display, no tray, or the tray does not take the window.
    docking,   ///< The tray was asked.
    docked,    ///< The tray gives all the width that was asked for.
    squeezed,  ///< It gives less: the window has the size that it was given.
  };
  enum class Button : std::uint8_t { left, middle, right };
  /// A button was pressed and let go inside of the window. None is held any more.
  struct Click {
    Button button = Button::left;
    ScreenPoint pointer;
    ScreenArea window;
    std::uint32_t time = 0;  ///< The X server's, in milliseconds.
  };

  struct Callbacks {
    /// The state is known, or another; never from inside of start(), update() or stop().
    std::function<void(State)> onState;
    /// The picture for a window of this size in pixels.
    std::function<AlphaBitmap(int width, int height, int scale)> picture;
    std::function<void(const Click& click)> onClick;
    /// The pointer has come to the window, or has left it.
    std::function<void(const ScreenPoint& pointer)> onEnter;
    std::function<void()> onLeave;
  };

  /// `display` as in DISPLAY; empty for the environment's.
  XEmbedWindow(uv_loop_t& loop, TaskQueue& queue, std::string display, Callbacks callbacks);
  ~XEmbedWindow();
  XEmbedWindow(const XEmbedWindow&) = delete;
  XEmbedWindow& operator=(const XEmbedWindow&) = delete;

  /// Looks for a tray and docks a window, `width` points wide, now or when a tray comes.
  void start(double width);
  /// Takes the window away and lets go of the display.
  void stop();

  /// There is another picture, `width` points wide.
  void update(double width);

  [[nodiscard]] State state() const { return state_; }

 private:
  struct Pump;

  void readEvents();
  void prepare();
  void handleEvent(const xcb_generic_event_t& event);
  void dock();
  void embedded(bool isInTray);
  void resized(int width, int height);
  void pressed(const xcb_button_press_event_t& event);
  void released(const xcb_button_release_event_t& event);
  [[nodiscard]] int wantedWidth() const;
  [[nodiscard]] int wantedHeight() const;
  void askForWidth();
  void checkWidth();
  void draw();
  void setState(State state);

  uv_loop_t& loop_;
  TaskQueue& queue_;
  std::string display_;
  Callbacks callbacks_;
  std::unique_ptr<TrayClient> client_;
  Pump* pump_ = nullptr;  // freed by libuv's close callbacks
  State state_ = State::absent;
  double points_ = 0;
  int askedWidth_ = 0;
  bool isEmbedded_ = false;
  int waits_ = 0;
  int width_ = 0;  // what the tray gave, in pixels
  int height_ = 0;
  std::optional<xcb_button_t> pressed_;  // inside of the window, and still held
  TimerHandle check_;
  TimerHandle report_;
};

}  // namespace vantora
