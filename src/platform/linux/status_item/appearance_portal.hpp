// SPDX-License-Identifier: MIT
//
// Whether the desktop is dark or light, from its portal (org.freedesktop.portal.Settings,
// namespace org.freedesktop.appearance, key color-scheme).
#pragma once

#include <functional>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "platform/linux/panels/ink.hpp"

namespace vantora {

/// Follows the setting for as long as it lives. A portal that does not run is not
/// started for our sake; it is queried once another program starts it. Lives on the
/// main thread.
class AppearancePortal final : public BusConnection::Listener {
 public:
  /// `onChange` comes with every change from ColorScheme::noPreference on.
  AppearancePortal(BusConnection& connection, std::function<void(ColorScheme)> onChange);
  ~AppearancePortal() override;
  AppearancePortal(const AppearancePortal&) = delete;
  AppearancePortal& operator=(const AppearancePortal&) = delete;

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  static int onRead(sd_bus_message* reply, void* self, sd_bus_error* error);
  static int onOwnerChanged(sd_bus_message* signal, void* self, sd_bus_error* error);
  static int onSettingChanged(sd_bus_message* signal, void* self, sd_bus_error* error);

  void read();
  void setScheme(ColorScheme scheme);

  BusConnection& connection_;
  std::function<void(ColorScheme)> onChange_;
  sd_bus* bus_ = nullptr;
  ColorScheme scheme_ = ColorScheme::noPreference;
  BusSlot ownerMatch_;
  BusSlot settingMatch_;
  BusSlot readCall_;
};

}  // namespace vantora
