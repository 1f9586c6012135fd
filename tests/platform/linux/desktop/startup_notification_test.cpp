// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/startup_notification.hpp"

#include <gtest/gtest.h>
#include <xcb/xcb.h>

#include <cstdlib>
#include <memory>

#include "platform/linux/x11_tray/private_display.hpp"

namespace vantora {
namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Owned = std::unique_ptr<T, Free>;

// A launcher: listens for client messages on the root window.
class Launcher {
 public:
  explicit Launcher(const std::string& display)
      : connection_(xcb_connect(display.c_str(), nullptr)) {
    const std::uint32_t mask = XCB_EVENT_MASK_PROPERTY_CHANGE;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    xcb_change_window_attributes(connection_, root, XCB_CW_EVENT_MASK, &mask);
    synchronise();
  }
  ~Launcher() { xcb_disconnect(connection_); }
  Launcher(const Launcher&) = delete;
  Launcher& operator=(const Launcher&) = delete;

  // The text of the message that has come in parts; "?" where a part is out of place.
  std::string heard() {
    synchronise();
    const xcb_atom_t begin = atom("_NET_STARTUP_INFO_BEGIN");
    const xcb_atom_t more = atom("_NET_STARTUP_INFO");
    std::string text;
    while (const Owned<xcb_generic_event_t> event{xcb_poll_for_event(connection_)}) {
      if ((event->response_type & 0x7F) != XCB_CLIENT_MESSAGE) {
        continue;
      }
      const auto* message = reinterpret_cast<const xcb_client_message_event_t*>(event.get());
      const bool isInPlace = message->type == (text.empty() ? begin : more) && message->format == 8;
      text += isInPlace ? std::string(reinterpret_cast<const char*>(message->data.data8), 20) : "?";
    }
    return text;
  }

 private:
  // Afterwards everything that was sent to this client has come.
  void synchronise() {
    const Owned<xcb_get_input_focus_reply_t> reply{
        xcb_get_input_focus_reply(connection_, xcb_get_input_focus(connection_), nullptr)};
    EXPECT_NE(reply, nullptr);
  }
  xcb_atom_t atom(const std::string& name) {
    const auto asked =
        xcb_intern_atom(connection_, 0, static_cast<std::uint16_t>(name.size()), name.data());
    const Owned<xcb_intern_atom_reply_t> reply{xcb_intern_atom_reply(connection_, asked, nullptr)};
    return reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }

  xcb_connection_t* connection_;
};

std::string padded(std::string text) {
  text.resize((text.size() + 20) / 20 * 20, '\0');  // at least one byte of zero
  return text;
}

TEST(StartupNotification, TellsTheLauncherThatTheStartIsOver) {
  const test::PrivateDisplay display;
  if (display.name().empty()) {
    GTEST_SKIP() << "needs Xvfb (package xvfb)";
  }
  Launcher launcher(display.name());
  StartupNotification::complete(display.name(), "panel-4711-host_TIME123");
  EXPECT_EQ(launcher.heard(), padded("remove: ID=\"panel-4711-host_TIME123\""));
}

TEST(StartupNotification, DoesNothingWithoutAServer) {
  StartupNotification::complete(":4711", "id");
  StartupNotification::complete("no display", "id");
}

TEST(StartupNotification, ProtectsWhatWouldEndTheIdentifier) {
  EXPECT_EQ(StartupNotification::completionParts("a\"b\\").front(),
            padded(R"(remove: ID="a\"b\\")"));
}

TEST(StartupNotification, EndsWithAZeroThoughTheLastPartIsFull) {
  // "remove: ID=" and two quotes are 13 bytes.
  const auto parts = StartupNotification::completionParts("1234567");
  ASSERT_EQ(parts.size(), 2U);
  EXPECT_EQ(parts[0], "remove: ID=\"1234567\"");
  EXPECT_EQ(parts[1], std::string(20, '\0'));
}

}  // namespace
}  // namespace vantora
