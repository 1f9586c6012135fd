// SPDX-License-Identifier: MIT
#include "platform/linux/xembed_window.hpp"

#include <algorithm>
#include <cmath>
#include <utility>

namespace vantora {
namespace {

// Trays lay themselves out when they are idle. After this what they gave is settled.
constexpr Seconds settled{0.5};
// How many times that long a tray may take to embed the window: one that starts with the
// session is slow.
constexpr int mostWaits = 10;
constexpr double pointsHigh = 22;
constexpr std::uint8_t eventTypeMask = 0x7F;  // the high bit tells of xcb_send_event

}  // namespace

struct XEmbedWindow::Pump {
  uv_poll_t poll{};
  uv_prepare_t prepare{};
  XEmbedWindow* owner = nullptr;
  int openHandles = 2;

  static Pump* start(XEmbedWindow& owner, uv_loop_t& loop, int descriptor) {
    auto* pump = new Pump;
    if (uv_poll_init(&loop, &pump->poll, descriptor) != 0) {
      delete pump;
      return nullptr;
    }
    uv_prepare_init(&loop, &pump->prepare);
    pump->owner = &owner;
    pump->poll.data = pump;
    pump->prepare.data = pump;
    uv_poll_start(&pump->poll, UV_READABLE, [](uv_poll_t* handle, int, int) {
      static_cast<Pump*>(handle->data)->owner->readEvents();
    });
    // xcb reads events while it waits for an answer, and keeps requests until they are
    // flushed: both are seen to before the loop waits.
    uv_prepare_start(&pump->prepare, [](uv_prepare_t* handle) {
      static_cast<Pump*>(handle->data)->owner->prepare();
    });
    return pump;
  }

  void stop() {
    uv_poll_stop(&poll);
    const auto closed = [](uv_handle_t* handle) {
      auto* pump = static_cast<Pump*>(handle->data);
      if (--pump->openHandles == 0) {
        delete pump;
      }
    };
    uv_close(reinterpret_cast<uv_handle_t*>(&poll), closed);
    uv_close(reinterpret_cast<uv_handle_t*>(&prepare), closed);
  }
};

XEmbedWindow::XEmbedWindow(uv_loop_t& loop, TaskQueue& queue, std::string display,
                           Callbacks callbacks)
    : loop_(loop), queue_(queue), display_(std::move(display)), callbacks_(std::move(callbacks)) {}

XEmbedWindow::~XEmbedWindow() {
  stop();
}

void XEmbedWindow::start(double width) {
  points_ = width;
  if (client_ != nullptr) {
    return;
  }
  client_ = std::make_unique<TrayClient>();
  if (client_->open(display_)) {
    pump_ = Pump::start(*this, loop_, xcb_get_file_descriptor(client_->x()));
  }
  if (pump_ == nullptr) {
    client_.reset();
    setState(State::absent);
    return;
  }
  dock();
}

void XEmbedWindow::stop() {
  check_.reset();
  report_.reset();
  if (pump_ != nullptr) {
    pump_->stop();
    pump_ = nullptr;
  }
  client_.reset();
  state_ = State::absent;
}

void XEmbedWindow::update(double width) {
  points_ = width;
  if (client_ == nullptr || client_->window() == XCB_NONE) {
    return;
  }
  if (wantedWidth() != askedWidth_) {
    askForWidth();
  }
  draw();
}

int XEmbedWindow::wantedWidth() const {
  return std::max(1, static_cast<int>(std::ceil(points_ * client_->scale())));
}

int XEmbedWindow::wantedHeight() const {
  return static_cast<int>(pointsHigh) * client_->scale();
}

// The descriptor is readable.
void XEmbedWindow::readEvents() {
  while (client_ != nullptr) {
    const XReply<xcb_generic_event_t> event(xcb_poll_for_event(client_->x()));
    if (event == nullptr) {
      break;
    }
    handleEvent(*event);
  }
  if (client_ != nullptr && xcb_connection_has_error(client_->x()) != 0) {
    stop();  // the display is gone, and the session with it
    setState(State::absent);
  }
}

// Before the loop waits: events that xcb has read while it waited for an answer, and
// requests that it still keeps.
void XEmbedWindow::prepare() {
  while (client_ != nullptr) {
    const XReply<xcb_generic_event_t> event(xcb_poll_for_queued_event(client_->x()));
    if (event == nullptr) {
      break;
    }
    handleEvent(*event);
  }
  if (client_ != nullptr) {
    xcb_flush(client_->x());
  }
}

void XEmbedWindow::handleEvent(const xcb_generic_event_t& event) {
  switch (event.response_type & eventTypeMask) {
    case XCB_EXPOSE:
      draw();
      break;
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      if (message.type == client_->atom(TrayClient::manager) &&
          message.data.data32[1] == client_->atom(TrayClient::selection)) {
        dock();
      }
      break;
    }
    case XCB_REPARENT_NOTIFY: {
      const auto& reparented = reinterpret_cast<const xcb_reparent_notify_event_t&>(event);
      if (reparented.window == client_->window()) {
        embedded(reparented.parent != client_->root());
      }
      break;
    }
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      if (configured.window == client_->window()) {
        resized(configured.width, configured.height);
      }
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      const auto& destroyed = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
      if (destroyed.window == client_->tray()) {
        dock();  // another one may have taken over already
      }
      break;
    }
    case XCB_PROPERTY_NOTIFY: {
      const auto& changed = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      if (changed.atom == client_->atom(TrayClient::colours)) {
        client_->readColours();
        draw();
      }
      break;
    }
    case XCB_BUTTON_PRESS:
      pressed(reinterpret_cast<const xcb_button_press_event_t&>(event));
      break;
    case XCB_BUTTON_RELEASE:
      released(reinterpret_cast<const xcb_button_release_event_t&>(event));
      break;
    case XCB_ENTER_NOTIFY: {
      const auto& entered = reinterpret_cast<const xcb_enter_notify_event_t&>(event);
      // Not when a menu has let go of a pointer that was here all the time.
      if (entered.mode == XCB_NOTIFY_MODE_NORMAL) {
        callbacks_.onEnter({entered.root_x, entered.root_y});
      }
      break;
    }
    case XCB_LEAVE_NOTIFY:
      callbacks_.onLeave();
      break;
    default:
      break;
  }
}

// Docks a new window with the tray that runs now, if one does.
void XEmbedWindow::dock() {
  check_.reset();
  client_->destroyWindow();
  isEmbedded_ = false;
  waits_ = 0;
  width_ = 0;
  height_ = 0;
  if (!client_->findTray() || !client_->makeWindow(wantedWidth(), wantedHeight())) {
    setState(State::absent);
    return;
  }
  askedWidth_ = wantedWidth();
  client_->requestDocking();
  setState(State::docking);
  check_ = queue_.runAfter(settled, settled / 4, [this] { checkWidth(); });
}

void XEmbedWindow::embedded(bool isInTray) {
  if (isInTray) {
    // Docked first and mapped later: no tray shows it on the desktop in between.
    isEmbedded_ = true;
    client_->map();
    check_ = queue_.runAfter(settled, settled / 4, [this] { checkWidth(); });
    return;
  }
  // The tray gave the window back to the root, where it would stand on the desktop.
  client_->destroyWindow();
  isEmbedded_ = false;
  check_.reset();
  setState(State::absent);
}

void XEmbedWindow::resized(int width, int height) {
  if (width == width_ && height == height_) {
    return;
  }
  width_ = width;
  height_ = height;
  draw();
  if (isEmbedded_ && check_ == nullptr) {
    check_ = queue_.runAfter(settled, settled / 4, [this] { checkWidth(); });
  }
}

void XEmbedWindow::askForWidth() {
  askedWidth_ = wantedWidth();
  client_->setSize(askedWidth_, std::max(wantedHeight(), height_));
  check_ = queue_.runAfter(settled, settled / 4, [this] { checkWidth(); });
}

void XEmbedWindow::checkWidth() {
  check_.reset();
  if (!isEmbedded_) {
    if (++waits_ < mostWaits) {
      check_ = queue_.runAfter(settled, settled / 4, [this] { checkWidth(); });
      return;
    }
    client_->destroyWindow();  // the tray does not take it
    setState(State::absent);
    return;
  }
  // A tray that leaves the size as it is tells nothing.
  const auto [width, height] = client_->size();
  resized(width, height);
  check_.reset();
  if (state_ == State::docking) {
    // A panel that composes its windows itself may miss what is drawn while it lays itself
    // out: Xfce's then shows an empty place until the next picture.
    draw();
  }
  setState(width_ >= askedWidth_ ? State::docked : State::squeezed);
}

void XEmbedWindow::draw() {
  if (!isEmbedded_ || width_ <= 0 || height_ <= 0) {
    return;
  }
  const AlphaBitmap bitmap = callbacks_.picture(width_, height_, client_->scale());
  if (bitmap.width == width_ && bitmap.height == height_) {
    client_->draw(width_, height_, xPixels(bitmap, client_->ink(), client_->trayDepth()));
  }
}

void XEmbedWindow::pressed(const xcb_button_press_event_t& event) {
  pressed_ = event.detail;
}

// A release without its press ends a click that was somebody else's: the press has closed
// a menu, for one.
void XEmbedWindow::released(const xcb_button_release_event_t& event) {
  const bool isOwn = pressed_ == event.detail;
  pressed_.reset();
  const bool isInside =
      event.event_x >= 0 && event.event_y >= 0 && event.event_x < width_ && event.event_y < height_;
  if (!isOwn || !isInside) {
    return;  // let go elsewhere: the click was thought better of
  }
  Click click{
      .pointer = {event.root_x, event.root_y},
      .window = {event.root_x - event.event_x, event.root_y - event.event_y, width_, height_},
      .time = event.time};
  switch (event.detail) {
    case XCB_BUTTON_INDEX_1:
      click.button = Button::left;
      break;
    case XCB_BUTTON_INDEX_2:
      click.button = Button::middle;
      break;
    case XCB_BUTTON_INDEX_3:
      click.button = Button::right;
      break;
    default:
      return;  // the wheel
  }
  // Another button may be held still, and the pointer with it, which the click may give to
  // another program.
  xcb_ungrab_pointer(client_->x(), event.time);
  callbacks_.onClick(click);
}

void XEmbedWindow::setState(State state) {
  state_ = state;
  report_ = queue_.runAfter(Seconds{0}, Seconds{0}, [this] {
    report_.reset();
    callbacks_.onState(state_);
  });
}

}  // namespace vantora
