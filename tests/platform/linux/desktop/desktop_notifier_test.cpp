// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/desktop_notifier.hpp"

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <string>

#include "platform/linux/bus/bus_slot.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"

namespace vantora {
namespace {

// A desktop that notes what it is to show.
struct NotificationServer final : BusConnection::Listener {
  explicit NotificationServer(UvLoop& loop, const std::string& address)
      : connection(loop.raw(), loop.queue(), address) {
    connection.add(*this);
    connection.open();
    EXPECT_TRUE(test::runUntil(loop, [this] { return ownsName; }));
  }
  ~NotificationServer() override { connection.remove(*this); }
  void busConnected(sd_bus& bus) override {
    sd_bus_add_object(&bus, out(object), "/org/freedesktop/Notifications", onCall, this);
    sd_bus_request_name_async(
        &bus, out(nameCall), "org.freedesktop.Notifications", 0,
        [](sd_bus_message*, void* self, sd_bus_error*) {
          static_cast<NotificationServer*>(self)->ownsName = true;
          return 0;
        },
        this);
  }
  void busLost() override {}
  static int onCall(sd_bus_message* call, void* self, sd_bus_error*) {
    const char* application = "";
    const char* icon = "";
    const char* summary = "";
    const char* body = "";
    const char* hint = "";
    const char* value = "";
    std::uint32_t replaced = 1;
    std::int32_t timeout = 0;
    EXPECT_GE(sd_bus_message_read(call, "susssasa{sv}i", &application, &replaced, &icon, &summary,
                                  &body, 0, 1, &hint, "s", &value, &timeout),
              0);
    auto* server = static_cast<NotificationServer*>(self);
    server->text = std::string(sd_bus_message_get_interface(call)) + "." +
                   sd_bus_message_get_member(call) + "|" + application + "|" +
                   std::to_string(replaced) + "|" + icon + "|" + summary + "|" + body + "|" + hint +
                   "=" + value + "|" + std::to_string(timeout);
    return 1;
  }
  BusConnection connection;
  BusSlot object;
  BusSlot nameCall;
  bool ownsName = false;
  std::string text;
};

TEST(DesktopNotifier, ShowsAMessageAsPlainText) {
  const test::PrivateBus bus;
  UvLoop loop;
  NotificationServer server(loop, bus.address());
  BusConnection connection(loop.raw(), loop.queue(), bus.address());
  DesktopNotifier notifier(connection);
  notifier.notify("dropped without a bus");
  connection.open();
  ASSERT_TRUE(test::runUntil(loop, [&] { return connection.bus() != nullptr; }));
  notifier.notify("Falha ao salvar: <b> & mais");
  ASSERT_TRUE(test::runUntil(loop, [&] { return !server.text.empty(); }));
  EXPECT_EQ(server.text,
            "org.freedesktop.Notifications.Notify|Vantora|0|vantora|Vantora|"
            "Falha ao salvar: &lt;b&gt; &amp; mais|desktop-entry=local.vantora.Vantora|-1");
}

}  // namespace
}  // namespace vantora
