// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/xembed_window.hpp"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <utility>

#include "platform/linux/x11_tray/tray_window.hpp"

namespace vantora {
namespace {

// Trays lay themselves out when they are idle. After this what they gave is settled.
constexpr Seconds settleTime{0.5};
// How many times that long a tray may take to embed the window: one that starts with the
// session is slow.
constexpr int maxWaits = 10;
constexpr double pointsHigh = 22;

}  // namespace

// What one connection's two ends share. The display's thread may hang with it for as long
// as the process lives, so that nothing in it refers to the window once that was stopped.
class XEmbedWindow::Link : public std::enable_shared_from_this<Link> {
 public:
  Link(TaskQueue& queue, XEmbedWindow& owner) : queue_(&queue), owner_(&owner) {}

  // Display's thread.
  void open(uv_loop_t& loop, const std::string& display) {
    window_ = std::make_unique<TrayWindow>(loop, [this](const TrayEvent& event) { report(event); });
    if (!window_->open(display)) {
      window_.reset();
      report(DisplayLost{});
    }
  }
  void close() { window_.reset(); }
  [[nodiscard]] TrayWindow* window() const { return window_.get(); }

  // Main thread.
  void cut() {
    const std::lock_guard lock(mutex_);
    queue_ = nullptr;
    owner_ = nullptr;
  }

 private:
  void report(const TrayEvent& event) {
    const std::lock_guard lock(mutex_);
    if (queue_ != nullptr) {
      queue_->post([self = shared_from_this(), event] {
        if (self->owner_ != nullptr) {
          self->owner_->take(event);
        }
      });
    }
  }

  std::mutex mutex_;
  TaskQueue* queue_;                    // guarded by mutex_
  XEmbedWindow* owner_;                 // main thread only
  std::unique_ptr<TrayWindow> window_;  // display's thread only
};

XEmbedWindow::XEmbedWindow(DisplayThread& thread, TaskQueue& queue, std::string display,
                           Callbacks callbacks)
    : thread_(thread),
      queue_(queue),
      display_(std::move(display)),
      callbacks_(std::move(callbacks)) {}

XEmbedWindow::~XEmbedWindow() {
  stop();
}

void XEmbedWindow::start(double width) {
  points_ = width;
  if (link_ != nullptr && !isWatching_) {
    return;
  }
  isWatching_ = false;
  open();
  state_ = State::starting;
  dock();
}

void XEmbedWindow::watch() {
  if (isWatching_) {
    return;
  }
  isWatching_ = true;
  forgetWindow();
  report_.reset();
  state_ = State::absent;
  open();
  look();
}

void XEmbedWindow::open() {
  if (link_ == nullptr) {
    link_ = std::make_shared<Link>(queue_, *this);
    thread_.post(
        [link = link_, display = display_](uv_loop_t& loop) { link->open(loop, display); });
  }
}

void XEmbedWindow::stop() {
  forgetWindow();
  report_.reset();
  isWatching_ = false;
  state_ = State::absent;
  if (link_ != nullptr) {
    link_->cut();
    thread_.post([link = std::move(link_)](uv_loop_t&) { link->close(); });
    link_ = nullptr;
  }
}

void XEmbedWindow::update(double width) {
  points_ = width;
  if (hasWindow_) {
    refresh();
  }
}

void XEmbedWindow::send(Command command) const {
  thread_.post([link = link_, command = std::move(command)](uv_loop_t&) {
    if (TrayWindow* window = link->window()) {
      command(*window);
    }
  });
}

int XEmbedWindow::wantedWidth() const {
  return isVertical_ ? wantedHeight() : std::max(1, static_cast<int>(std::ceil(points_ * scale_)));
}

int XEmbedWindow::wantedHeight() const {
  return static_cast<int>(pointsHigh) * scale_;
}

// Docks a new window with the tray that runs now, if one does.
void XEmbedWindow::dock() {
  forgetWindow();
  send([width = points_](TrayWindow& window) { window.dock(width, pointsHigh); });
  check_ = queue_.runAfter(answerTimeout, answerTimeout / 4, [this] {
    check_.reset();
    setState(State::absent);
  });
}

void XEmbedWindow::look() const {
  send([](TrayWindow& window) { window.look(); });
}

void XEmbedWindow::forgetWindow() {
  check_.reset();
  hasWindow_ = false;
  isEmbedded_ = false;
  isDrawing_ = false;
  isOutdated_ = false;
  waits_ = 0;
  width_ = 0;
  height_ = 0;
}

void XEmbedWindow::checkSoon() {
  check_ = queue_.runAfter(settleTime, settleTime / 4, [this] {
    check_.reset();
    check();
  });
}

void XEmbedWindow::check() {
  if (isEmbedded_) {
    // A tray that leaves the size as it is reports nothing.
    send([](TrayWindow& window) { window.measure(); });
  } else if (++waits_ < maxWaits) {
    checkSoon();
  } else {
    send([](TrayWindow& window) { window.undock(); });  // the tray does not take it
    forgetWindow();
    setState(State::absent);
  }
}

// One picture at a time: the next waits until the server has taken the one before.
void XEmbedWindow::refresh() {
  if (isDrawing_) {
    isOutdated_ = true;
    return;
  }
  if (wantedWidth() != askedWidth_) {
    askForWidth();
  }
  draw();
}

void XEmbedWindow::draw() {
  if (!isEmbedded_ || width_ <= 0 || height_ <= 0) {
    return;
  }
  if (isDrawing_) {
    isOutdated_ = true;
    return;
  }
  AlphaBitmap picture = callbacks_.picture(width_, height_, scale_);
  if (picture.width == width_ && picture.height == height_) {
    isDrawing_ = true;
    send([picture = std::move(picture)](TrayWindow& window) { window.draw(picture); });
  }
}

void XEmbedWindow::askForWidth() {
  askedWidth_ = wantedWidth();
  send([width = askedWidth_, height = std::max(wantedHeight(), height_)](TrayWindow& window) {
    window.resize(width, height);
  });
  checkSoon();
}

void XEmbedWindow::setState(State state) {
  state_ = state;
  report_ = queue_.runAfter(Seconds{0}, Seconds{0}, [this] {
    report_.reset();
    callbacks_.onState(state_);
  });
}

void XEmbedWindow::take(const TrayEvent& event) {
  std::visit([this](const auto& value) { on(value); }, event);
}

// Not tried again before the next stop() and start(): a display that is gone takes its
// session with it.
void XEmbedWindow::on(const DisplayLost&) {
  forgetWindow();
  thread_.post([link = link_](uv_loop_t&) { link->close(); });
  setState(State::absent);
}

void XEmbedWindow::on(const TrayChanged&) {
  if (isWatching_) {
    look();
  } else {
    dock();
  }
}

void XEmbedWindow::on(const TraySeen& event) {
  if (isWatching_) {
    callbacks_.onOrientation(event.isVertical);
  }
}

void XEmbedWindow::on(const TrayMissing&) {
  if (isWatching_) {
    callbacks_.onOrientation(false);
    return;
  }
  forgetWindow();
  setState(State::absent);
}

void XEmbedWindow::on(const TrayAsked& event) {
  if (isWatching_) {
    return;  // the answer to a question from before
  }
  forgetWindow();
  hasWindow_ = true;
  scale_ = event.scale;
  isVertical_ = event.isVertical;
  setState(State::docking);
  // The width may have changed since the display was asked.
  askForWidth();
}

void XEmbedWindow::on(const WindowEmbedded&) {
  if (hasWindow_) {
    isEmbedded_ = true;
    checkSoon();
  }
}

void XEmbedWindow::on(const WindowReturned&) {
  if (hasWindow_) {
    forgetWindow();
    setState(State::absent);
  }
}

void XEmbedWindow::on(const WindowResized& event) {
  if (!hasWindow_ || (event.width == width_ && event.height == height_)) {
    return;
  }
  width_ = event.width;
  height_ = event.height;
  draw();
  if (isEmbedded_ && check_ == nullptr) {
    checkSoon();
  }
}

void XEmbedWindow::on(const WindowMeasured& event) {
  if (!isEmbedded_ || check_ != nullptr) {
    return;  // it is measured again
  }
  on(WindowResized{event.width, event.height});
  check_.reset();
  if (width_ < askedWidth_ && scale_ > 1) {
    // A panel that does not scale gives a fine screen's window the height of its bar, and
    // shrinks the width with it.
    --scale_;
    askForWidth();
    return;
  }
  if (state_ == State::docking) {
    // A panel that composes its windows itself may miss what is drawn while it lays itself
    // out: Xfce's then shows an empty place until the next picture.
    draw();
  }
  setState(width_ >= askedWidth_ ? State::docked : State::squeezed);
}

void XEmbedWindow::on(const WindowExposed&) {
  draw();
}

void XEmbedWindow::on(const WindowDrawn& event) {
  ink_ = event.ink;
  isDrawing_ = false;
  if (std::exchange(isOutdated_, false) && hasWindow_) {
    refresh();
  }
}

void XEmbedWindow::on(const TrayClick& event) {
  callbacks_.onClick(event);
}

void XEmbedWindow::on(const PointerEntered& event) {
  callbacks_.onEnter(event.pointer);
}

void XEmbedWindow::on(const PointerLeft&) {
  callbacks_.onLeave();
}

}  // namespace vantora
