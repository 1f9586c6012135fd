// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"

namespace vantora::test {

/// The desktop's portal with one setting, its colour scheme.
class ScriptedPortal final : public BusConnection::Listener {
 public:
  ScriptedPortal(BusConnection& connection, std::uint32_t scheme)
      : connection_(connection), scheme_(scheme) {
    connection_.add(*this);
  }
  ~ScriptedPortal() override { connection_.remove(*this); }
  void busConnected(sd_bus& bus) override {
    bus_ = &bus;
    sd_bus_add_object_vtable(&bus, out(object_), path, interface, table, this);
    sd_bus_request_name_async(
        &bus, out(name_), "org.freedesktop.portal.Desktop", 0,
        [](sd_bus_message*, void*, sd_bus_error*) { return 0; }, nullptr);
  }
  void busLost() override {}
  void change(std::uint32_t scheme) {
    scheme_ = scheme;
    sd_bus_emit_signal(bus_, path, interface, "SettingChanged", "ssv", "org.freedesktop.appearance",
                       "color-scheme", "u", scheme);
  }

 private:
  static constexpr const char* path = "/org/freedesktop/portal/desktop";
  static constexpr const char* interface = "org.freedesktop.portal.Settings";
  static int onRead(sd_bus_message* call, void* self, sd_bus_error*) {
    return sd_bus_reply_method_return(call, "v", "v", "u",
                                      static_cast<ScriptedPortal*>(self)->scheme_);
  }
  static const sd_bus_vtable table[];
  BusConnection& connection_;
  std::uint32_t scheme_;
  sd_bus* bus_ = nullptr;
  BusSlot object_;
  BusSlot name_;
};
inline const sd_bus_vtable ScriptedPortal::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("Read", "ss", "v", onRead, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("SettingChanged", "ssv", 0),
    SD_BUS_VTABLE_END,
};

}  // namespace vantora::test
