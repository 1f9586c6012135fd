// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/tray_window.hpp"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "platform/linux/x11_tray/xembed_pixels.hpp"

namespace vantora {
namespace {

constexpr std::uint8_t eventTypeMask = 0x7F;  // the high bit marks events of xcb_send_event

int toPixels(double points, int scale) {
  return std::max(1, static_cast<int>(std::ceil(points * scale)));
}

std::optional<TrayButton> trayButton(xcb_button_t button) {
  switch (button) {
    case XCB_BUTTON_INDEX_1:
      return TrayButton::left;
    case XCB_BUTTON_INDEX_2:
      return TrayButton::middle;
    case XCB_BUTTON_INDEX_3:
      return TrayButton::right;
    default:
      return std::nullopt;  // the wheel
  }
}

}  // namespace

struct TrayWindow::Pump {
  uv_poll_t poll{};
  uv_prepare_t prepare{};
  TrayWindow* owner = nullptr;
  int openHandles = 2;

  static Pump* start(TrayWindow& owner, uv_loop_t& loop, int descriptor) {
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
    // xcb reads events while it waits for a reply, and keeps requests until they are
    // flushed: both are dealt with before the loop waits.
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

TrayWindow::TrayWindow(uv_loop_t& loop, Report report) : loop_(loop), report_(std::move(report)) {}

TrayWindow::~TrayWindow() {
  if (pump_ != nullptr) {
    pump_->stop();
  }
}

bool TrayWindow::open(const std::string& display) {
  if (client_.open(display)) {
    pump_ = Pump::start(*this, loop_, xcb_get_file_descriptor(client_.x()));
  }
  return pump_ != nullptr;
}

void TrayWindow::dock(double width, double height) {
  undock();
  if (!client_.findTray()) {
    report_(TrayMissing{});
    return;
  }
  const int scale = client_.scale();
  const int high = toPixels(height, scale);
  if (!client_.makeWindow(client_.isVertical() ? high : toPixels(width, scale), high)) {
    report_(TrayMissing{});
    return;
  }
  client_.requestDocking();
  report_(TrayAsked{scale, client_.isVertical()});
}

void TrayWindow::undock() {
  client_.destroyWindow();
  size_ = {0, 0};
  pressed_.reset();
}

void TrayWindow::look() {
  undock();
  if (client_.findTray()) {
    report_(TraySeen{client_.isVertical()});
  } else {
    report_(TrayMissing{});
  }
}

void TrayWindow::resize(int width, int height) {
  if (client_.window() != XCB_NONE) {
    client_.setSize(width, height);
  }
}

void TrayWindow::measure() {
  const auto [width, height] = client_.size();
  size_ = {width, height};
  report_(WindowMeasured{width, height});
}

void TrayWindow::draw(const AlphaBitmap& picture) {
  if (client_.window() != XCB_NONE && std::pair(picture.width, picture.height) == size_) {
    std::vector<std::uint32_t> pixels = xPixels(picture, client_.ink(), client_.trayDepth());
    for (std::uint32_t& pixel : pixels) {
      pixel |= client_.opaqueAlpha();
    }
    client_.draw(picture.width, picture.height, pixels);
    xcb_flush(client_.x());
  }
  report_(WindowDrawn{client_.ink()});
}

// The descriptor is readable.
void TrayWindow::readEvents() {
  while (const XReply<xcb_generic_event_t> event{xcb_poll_for_event(client_.x())}) {
    handleEvent(*event);
  }
  if (xcb_connection_has_error(client_.x()) != 0) {
    lose();
  }
}

// Flushing reads as well: xcb takes in what has arrived while it writes, and the descriptor
// no longer says so. So the events come after the last flush.
void TrayWindow::prepare() {
  for (bool hasHandled = true; hasHandled;) {
    if (xcb_flush(client_.x()) <= 0) {
      lose();
      return;
    }
    hasHandled = false;
    while (const XReply<xcb_generic_event_t> event{xcb_poll_for_queued_event(client_.x())}) {
      handleEvent(*event);
      hasHandled = true;
    }
  }
}

void TrayWindow::lose() {
  if (pump_ != nullptr) {
    pump_->stop();
    pump_ = nullptr;
    report_(DisplayLost{});
  }
}

void TrayWindow::handleEvent(const xcb_generic_event_t& event) {
  switch (event.response_type & eventTypeMask) {
    case XCB_EXPOSE:
      report_(WindowExposed{});
      break;
    case XCB_CLIENT_MESSAGE: {
      const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(event);
      if (message.type == client_.atom(TrayClient::manager) &&
          message.data.data32[1] == client_.atom(TrayClient::selection)) {
        report_(TrayChanged{});
      }
      break;
    }
    case XCB_REPARENT_NOTIFY:
      reparented(reinterpret_cast<const xcb_reparent_notify_event_t&>(event));
      break;
    case XCB_CONFIGURE_NOTIFY: {
      const auto& configured = reinterpret_cast<const xcb_configure_notify_event_t&>(event);
      if (configured.window == client_.window()) {
        resized(configured.width, configured.height);
      }
      break;
    }
    case XCB_DESTROY_NOTIFY: {
      const auto& destroyed = reinterpret_cast<const xcb_destroy_notify_event_t&>(event);
      if (destroyed.window == client_.tray()) {
        report_(TrayChanged{});  // another one may have taken over already
      }
      break;
    }
    case XCB_PROPERTY_NOTIFY:
      handleProperty(reinterpret_cast<const xcb_property_notify_event_t&>(event));
      break;
    case XCB_BUTTON_PRESS:
      pressed_ = reinterpret_cast<const xcb_button_press_event_t&>(event).detail;
      break;
    case XCB_BUTTON_RELEASE:
      released(reinterpret_cast<const xcb_button_release_event_t&>(event));
      break;
    case XCB_ENTER_NOTIFY: {
      const auto& entered = reinterpret_cast<const xcb_enter_notify_event_t&>(event);
      // Not when a menu has let go of a pointer that was here all the time.
      if (entered.mode == XCB_NOTIFY_MODE_NORMAL) {
        report_(PointerEntered{{entered.root_x, entered.root_y}});
      }
      break;
    }
    case XCB_LEAVE_NOTIFY:
      report_(PointerLeft{});
      break;
    default:
      break;
  }
}

void TrayWindow::handleProperty(const xcb_property_notify_event_t& event) {
  if (event.atom == client_.atom(TrayClient::colours)) {
    client_.readColours();
    report_(WindowExposed{});
  } else if (event.atom == client_.atom(TrayClient::orientation)) {
    const bool wasVertical = client_.isVertical();
    client_.readOrientation();
    if (client_.isVertical() != wasVertical) {
      report_(TrayChanged{});
    }
  }
}

void TrayWindow::reparented(const xcb_reparent_notify_event_t& event) {
  if (event.window != client_.window() || client_.window() == XCB_NONE) {
    return;
  }
  if (event.parent == client_.root()) {
    // The tray gave the window back to the root, where it would show on the desktop.
    undock();
    report_(WindowReturned{});
    return;
  }
  // Docked first and mapped later: no tray shows it on the desktop in between.
  client_.map();
  report_(WindowEmbedded{});
}

void TrayWindow::resized(int width, int height) {
  size_ = {width, height};
  report_(WindowResized{width, height});
}

// A release without its press ends another program's click: the press has closed a menu,
// for one. A release outside the window is a click that was given up.
void TrayWindow::released(const xcb_button_release_event_t& event) {
  const bool isOwn = pressed_ == event.detail;
  pressed_.reset();
  const auto [width, height] = size_;
  const bool isInside =
      event.event_x >= 0 && event.event_y >= 0 && event.event_x < width && event.event_y < height;
  const auto button = trayButton(event.detail);
  if (!isOwn || !isInside || !button) {
    return;
  }
  // Another button may still be held, and the pointer with it, which the click may hand to
  // another program.
  xcb_ungrab_pointer(client_.x(), event.time);
  xcb_flush(client_.x());
  report_(TrayClick{
      .button = *button,
      .pointer = {event.root_x, event.root_y},
      .window = {event.root_x - event.event_x, event.root_y - event.event_y, width, height},
      .time = event.time});
}

}  // namespace vantora
