// SPDX-License-Identifier: MIT
#include "platform/linux/tray_menu.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include "status/rasterise.hpp"

namespace vantora {
namespace {

// X11 keysyms (X11/keysymdef.h).
constexpr xcb_keysym_t keyReturn = 0xFF0D;
constexpr xcb_keysym_t keyEscape = 0xFF1B;
constexpr xcb_keysym_t keyUp = 0xFF52;
constexpr xcb_keysym_t keyDown = 0xFF54;
constexpr xcb_keysym_t keySpace = 0x20;
constexpr xcb_keysym_t keyPadEnter = 0xFF8D;
constexpr std::uint8_t eventTypeMask = 0x7F;

constexpr std::uint16_t pointerEvents =
    XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_POINTER_MOTION;

// The unshifted symbol of a key.
xcb_keysym_t symbolOf(xcb_connection_t* x, xcb_keycode_t key) {
  const XReply<xcb_get_keyboard_mapping_reply_t> reply(
      xcb_get_keyboard_mapping_reply(x, xcb_get_keyboard_mapping(x, key, 1), nullptr));
  if (reply == nullptr || reply->keysyms_per_keycode == 0) {
    return 0;
  }
  return xcb_get_keyboard_mapping_keysyms(reply.get())[0];
}

}  // namespace

TrayMenu::TrayMenu(const TrayClient& client, TrayMenuLayout layout, TextEngine& engine,
                   TrayMenuAnchor anchor, OnEnd onEnd)
    : client_(client),
      layout_(std::move(layout)),
      labels_(rasterise(layout_.texts, engine, client.scale())),
      onEnd_(std::move(onEnd)) {
  place(anchor);
  grab();
}

TrayMenu::~TrayMenu() {
  xcb_connection_t* x = client_.x();
  xcb_ungrab_pointer(x, XCB_CURRENT_TIME);
  xcb_ungrab_keyboard(x, XCB_CURRENT_TIME);
  xcb_free_gc(x, context_);
  xcb_destroy_window(x, window_);
}

void TrayMenu::place(const TrayMenuAnchor& anchor) {
  xcb_connection_t* connection = client_.x();
  const xcb_screen_t& screen = client_.screen();
  const int left = std::clamp(anchor.left, 0, std::max(0, screen.width_in_pixels - labels_.width));
  const bool fitsBelow = anchor.bottom + labels_.height <= screen.height_in_pixels;
  const int top = fitsBelow ? anchor.bottom : std::max(0, anchor.top - labels_.height);
  window_ = xcb_generate_id(connection);
  // In the order of their bits: background, override-redirect, events.
  const std::array<std::uint32_t, 3> values{
      screen.black_pixel, 1,
      std::uint32_t{XCB_EVENT_MASK_EXPOSURE} | XCB_EVENT_MASK_KEY_PRESS | pointerEvents};
  xcb_create_window(
      connection, screen.root_depth, window_, screen.root, static_cast<std::int16_t>(left),
      static_cast<std::int16_t>(top), static_cast<std::uint16_t>(labels_.width),
      static_cast<std::uint16_t>(labels_.height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT,
      screen.root_visual, XCB_CW_BACK_PIXEL | XCB_CW_OVERRIDE_REDIRECT | XCB_CW_EVENT_MASK,
      values.data());
  context_ = xcb_generate_id(connection);
  xcb_create_gc(connection, context_, window_, 0, nullptr);
  xcb_map_window(connection, window_);
}

// A grab that somebody else holds is done without: clicks on the menu still arrive.
void TrayMenu::grab() {
  xcb_connection_t* x = client_.x();
  xcb_discard_reply(x, xcb_grab_pointer(x, 1, window_, pointerEvents, XCB_GRAB_MODE_ASYNC,
                                        XCB_GRAB_MODE_ASYNC, XCB_NONE, XCB_NONE, XCB_CURRENT_TIME)
                           .sequence);
  xcb_discard_reply(x, xcb_grab_keyboard(x, 1, window_, XCB_CURRENT_TIME, XCB_GRAB_MODE_ASYNC,
                                         XCB_GRAB_MODE_ASYNC)
                           .sequence);
}

void TrayMenu::draw() {
  const auto pixels = trayMenuPixels(layout_, labels_, client_.scale(), chosen_);
  xcb_put_image(client_.x(), XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_,
                static_cast<std::uint16_t>(labels_.width),
                static_cast<std::uint16_t>(labels_.height), 0, 0, 0, client_.screen().root_depth,
                static_cast<std::uint32_t>(pixels.size() * sizeof(pixels[0])),
                reinterpret_cast<const std::uint8_t*>(pixels.data()));
}

void TrayMenu::handle(const xcb_generic_event_t& event) {
  if (hasEnded_) {
    return;
  }
  switch (event.response_type & eventTypeMask) {
    case XCB_EXPOSE:
      draw();
      break;
    case XCB_MOTION_NOTIFY: {
      const auto& moved = reinterpret_cast<const xcb_motion_notify_event_t&>(event);
      if (moved.event == window_) {
        choose(entryAt(moved.event_x, moved.event_y));
      }
      break;
    }
    case XCB_BUTTON_PRESS: {
      const auto& pressed = reinterpret_cast<const xcb_button_press_event_t&>(event);
      if (pressed.event != window_ || !isInside(pressed.event_x, pressed.event_y)) {
        end(std::nullopt);
      }
      break;
    }
    case XCB_BUTTON_RELEASE: {
      const auto& released = reinterpret_cast<const xcb_button_release_event_t&>(event);
      const auto entry = entryAt(released.event_x, released.event_y);
      if (released.event == window_ && entry.has_value()) {
        end(entry);
      }
      break;
    }
    case XCB_KEY_PRESS:
      pressed(reinterpret_cast<const xcb_key_press_event_t&>(event).detail);
      break;
    default:
      break;
  }
}

void TrayMenu::pressed(xcb_keycode_t key) {
  switch (symbolOf(client_.x(), key)) {
    case keyEscape:
      end(std::nullopt);
      break;
    case keyUp:
    case keyDown:
      choose(neighbourEntry(layout_, chosen_, symbolOf(client_.x(), key) == keyDown));
      break;
    case keyReturn:
    case keyPadEnter:
    case keySpace:
      end(chosen_);
      break;
    default:
      break;
  }
}

bool TrayMenu::isInside(int x, int y) const {
  return x >= 0 && y >= 0 && x < labels_.width && y < labels_.height;
}

std::optional<std::size_t> TrayMenu::entryAt(int x, int y) const {
  const double scale = client_.scale();
  return trayMenuEntryAt(layout_, x / scale, y / scale);
}

void TrayMenu::choose(std::optional<std::size_t> entry) {
  if (entry != chosen_) {
    chosen_ = entry;
    draw();
  }
}

void TrayMenu::end(std::optional<std::size_t> entry) {
  hasEnded_ = true;
  onEnd_(entry);
}

}  // namespace vantora
