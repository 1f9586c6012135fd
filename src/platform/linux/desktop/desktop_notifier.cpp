// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_notifier.hpp"

#include <systemd/sd-bus.h>

#include <memory>

namespace vantora {
namespace {

struct MessageRelease {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

// A server may take the body for markup.
std::string escaped(const std::string& text) {
  std::string result;
  for (const char character : text) {
    switch (character) {
      case '&':
        result += "&amp;";
        break;
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      default:
        result += character;
    }
  }
  return result;
}

}  // namespace

void DesktopNotifier::notify(const std::string& message) {
  constexpr const char* name = "org.freedesktop.Notifications";
  constexpr const char* path = "/org/freedesktop/Notifications";
  constexpr int serversOwnTimeout = -1;
  sd_bus* bus = connection_.bus();
  sd_bus_message* made = nullptr;
  if (bus == nullptr ||
      sd_bus_message_new_method_call(bus, &made, name, path, name, "Notify") < 0) {
    return;
  }
  const std::unique_ptr<sd_bus_message, MessageRelease> call(made);
  if (sd_bus_message_set_expect_reply(made, 0) >= 0 &&
      sd_bus_message_append(made, "susssasa{sv}i", "Vantora", 0U, "vantora", "Vantora",
                            escaped(message).c_str(), 0U, 1U, "desktop-entry", "s",
                            "local.vantora.Vantora", serversOwnTimeout) >= 0) {
    (void)sd_bus_send(bus, made, nullptr);
  }
}

}  // namespace vantora
