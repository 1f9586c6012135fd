// SPDX-License-Identifier: MIT
//
// A window docked in an X11 system tray (freedesktop's "System Tray Protocol" and
// "XEmbed"), for panels that keep such a window as wide as it asks to be. It finds the
// tray, docks, docks again when the tray restarts, and reports when the tray gives it
// less room than it needs.
//
// This is the main thread's end: it decides and keeps the time. What waits for the server
// is TrayWindow, on the display's thread; the two exchange values.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "platform/linux/x11_tray/display_thread.hpp"
#include "platform/linux/x11_tray/tray_event.hpp"
#include "runtime/task_queue.hpp"
#include "status/bitmap.hpp"

namespace vantora {

class TrayWindow;

/// Main thread; no call waits for the X server. What is sent to a server that does not
/// answer is bounded: one picture, and one message for each start() and stop().
class XEmbedWindow {
 public:
  enum class State : std::uint8_t {
    absent,    ///< No display, no tray, or the tray does not take the window.
    starting,  ///< The display was asked, and has not answered yet.
    docking,   ///< The tray was asked.
    docked,    ///< The tray gives all the width that was asked for.
    squeezed,  ///< It gives less, at a scale of 1 too: the window has the size that it got.
  };
  using Button = TrayButton;
  using Click = TrayClick;

  struct Callbacks {
    /// The state is known, or has changed; never from inside start(), update() or stop().
    std::function<void(State)> onState;
    /// The picture for a window of this size in pixels.
    std::function<AlphaBitmap(int width, int height, int scale)> picture;
    std::function<void(const Click& click)> onClick;
    /// The pointer has entered or left the window.
    std::function<void(const ScreenPoint& pointer)> onEnter;
    std::function<void()> onLeave;
    /// While watch()ing: whether the tray arranges its icons in a column. False without a tray.
    std::function<void(bool isVertical)> onOrientation;
  };

  /// A display that has not answered for this long counts as absent until it does.
  static constexpr Seconds answerTimeout{2};

  /// `display` as in DISPLAY; empty for the environment's. `thread` outlives the window.
  XEmbedWindow(DisplayThread& thread, TaskQueue& queue, std::string display, Callbacks callbacks);
  ~XEmbedWindow();
  XEmbedWindow(const XEmbedWindow&) = delete;
  XEmbedWindow& operator=(const XEmbedWindow&) = delete;

  /// Looks for a tray and docks a window, `width` points wide, now or when a tray comes.
  void start(double width);
  /// Docks nothing, or not any longer, and follows how the tray is oriented.
  void watch();
  /// Removes the window and closes the connection.
  void stop();

  /// There is another picture, `width` points wide.
  void update(double width);

  [[nodiscard]] State state() const { return state_; }
  /// While docked or squeezed: pixels in a point, and the ink of the picture that was drawn last.
  [[nodiscard]] int scale() const { return scale_; }
  [[nodiscard]] Ink ink() const { return ink_; }

 private:
  class Link;
  using Command = std::function<void(TrayWindow& window)>;

  void send(Command command) const;
  void open();
  void dock();
  void look() const;
  void forgetWindow();
  void checkSoon();
  void check();
  void refresh();
  void draw();
  void askForWidth();
  [[nodiscard]] int wantedWidth() const;
  [[nodiscard]] int wantedHeight() const;
  void setState(State state);

  void take(const TrayEvent& event);
  void on(const DisplayLost& event);
  void on(const TrayChanged& event);
  void on(const TrayMissing& event);
  void on(const TrayAsked& event);
  void on(const TraySeen& event);
  void on(const WindowEmbedded& event);
  void on(const WindowReturned& event);
  void on(const WindowResized& event);
  void on(const WindowMeasured& event);
  void on(const WindowExposed& event);
  void on(const WindowDrawn& event);
  void on(const TrayClick& event);
  void on(const PointerEntered& event);
  void on(const PointerLeft& event);

  DisplayThread& thread_;
  TaskQueue& queue_;
  std::string display_;
  Callbacks callbacks_;
  std::shared_ptr<Link> link_;  // between start() and stop()
  State state_ = State::absent;
  double points_ = 0;
  bool isWatching_ = false;
  bool hasWindow_ = false;  // the tray was asked; what is reported is about our window
  bool isEmbedded_ = false;
  bool isVertical_ = false;
  bool isDrawing_ = false;   // a picture is on its way
  bool isOutdated_ = false;  // and another one is wanted after it
  int scale_ = 1;
  Ink ink_ = Ink::lightOnPlate;
  int askedWidth_ = 0;
  int waits_ = 0;
  int width_ = 0;  // what the tray gave, in pixels
  int height_ = 0;
  TimerHandle check_;
  TimerHandle report_;
};

}  // namespace vantora
