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
#include <string_view>
#include <vector>

#include "platform/linux/tray_menu.hpp"
#include "platform/linux/xembed_pixels.hpp"
#include "runtime/task_queue.hpp"
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

  struct Callbacks {
    /// The state is known, or another; never from inside of start(), update() or stop().
    std::function<void(State)> onState;
    /// The picture for a window of this size in pixels.
    std::function<AlphaBitmap(int width, int height, int scale)> picture;
    /// A button was let go inside of the window, which stands at `anchor`.
    std::function<void(Button button, TrayMenuAnchor anchor)> onClick;
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

  /// Opens a menu beside the anchor that onClick told of. One
  /// menu at a time: another one takes its place. `onChosen` comes with the entry, from
  /// inside of the loop, and not at all when the menu is given up.
  void openMenu(const std::vector<std::string_view>& labels, TextEngine& engine,
                TrayMenuAnchor anchor, std::function<void(std::size_t entry)> onChosen);

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
  void clicked(int button, int x, int y, int rootX, int rootY);
  [[nodiscard]] int wantedWidth() const;
  [[nodiscard]] int wantedHeight() const;
  void askForWidth();
  void checkWidth();
  void draw();
  void menuEnded(std::optional<std::size_t> entry);
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
  std::unique_ptr<TrayMenu> menu_;  // destroyed before the client that it uses
  std::function<void(std::size_t)> onChosen_;
  TimerHandle menuEnd_;
  TimerHandle check_;
  TimerHandle report_;
};

}  // namespace vantora
