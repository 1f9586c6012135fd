// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/startup_notification.hpp"

#include <xcb/xcb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>

namespace vantora::StartupNotification {
namespace {

constexpr std::size_t partBytes = 20;

struct Disconnect {
  void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
};
using Connection = std::unique_ptr<xcb_connection_t, Disconnect>;

const xcb_screen_t* screenOf(xcb_connection_t* connection, int number) {
  auto screens = xcb_setup_roots_iterator(xcb_get_setup(connection));
  for (; screens.rem > 1 && number > 0; --number) {
    xcb_screen_next(&screens);
  }
  return screens.data;
}

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
  const auto asked =
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data());
  xcb_intern_atom_reply_t* reply = xcb_intern_atom_reply(connection, asked, nullptr);
  const xcb_atom_t result = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  std::free(reply);
  return result;
}

// A value in double quotes, in which a backslash protects both characters.
std::string quoted(const std::string& value) {
  std::string result = "\"";
  for (const char byte : value) {
    if (byte == '"' || byte == '\\') {
      result += '\\';
    }
    result += byte;
  }
  return result + '"';
}

}  // namespace

std::vector<std::string> completionParts(const std::string& startupId) {
  const std::string message = "remove: ID=" + quoted(startupId) + '\0';
  std::vector<std::string> parts;
  for (std::size_t start = 0; start < message.size(); start += partBytes) {
    parts.push_back(message.substr(start, partBytes));
    parts.back().resize(partBytes, '\0');
  }
  return parts;
}

void complete(const std::string& display, const std::string& startupId) {
  int number = 0;
  const Connection connection(xcb_connect(display.c_str(), &number));
  if (xcb_connection_has_error(connection.get()) != 0) {
    return;
  }
  const xcb_screen_t* screen = screenOf(connection.get(), number);
  const xcb_atom_t begin = atom(connection.get(), "_NET_STARTUP_INFO_BEGIN");
  const xcb_atom_t more = atom(connection.get(), "_NET_STARTUP_INFO");
  if (screen == nullptr || begin == XCB_ATOM_NONE || more == XCB_ATOM_NONE) {
    return;
  }
  // The window only tells the parts of one message from those of another.
  const xcb_window_t window = xcb_generate_id(connection.get());
  constexpr std::uint32_t overrideRedirect = 1;
  xcb_create_window(connection.get(), 0, window, screen->root, -1, -1, 1, 1, 0,
                    XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_OVERRIDE_REDIRECT,
                    &overrideRedirect);
  xcb_client_message_event_t event{};
  event.response_type = XCB_CLIENT_MESSAGE;
  event.format = 8;
  event.window = window;
  event.type = begin;
  for (const std::string& part : completionParts(startupId)) {
    std::memcpy(event.data.data8, part.data(), partBytes);
    xcb_send_event(connection.get(), 0, screen->root, XCB_EVENT_MASK_PROPERTY_CHANGE,
                   reinterpret_cast<const char*>(&event));
    event.type = more;
  }
  xcb_destroy_window(connection.get(), window);
  // The answer to any question comes after all of it was done.
  (void)atom(connection.get(), "_NET_STARTUP_INFO");
}

}  // namespace vantora::StartupNotification
