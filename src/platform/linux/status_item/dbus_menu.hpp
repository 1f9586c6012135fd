// SPDX-License-Identifier: MIT
//
// The object /MenuBar on the session bus: com.canonical.dbusmenu, version 3, through
// which panels fetch the item's menu and report what was chosen. Panels draw it in their
// own style; nothing of a toolkit is needed here.
#pragma once

#include <cstdint>
#include <functional>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "platform/linux/status_item/status_menu.hpp"

namespace vantora {

/// Lives on the main thread.
class DBusMenu final : public BusConnection::Listener {
 public:
  static constexpr const char* path = "/MenuBar";

  /// `isPaused` is asked when a panel is about to open the menu; `onCommand` comes from
  /// inside of the loop, in the middle of a message.
  DBusMenu(BusConnection& connection, std::function<bool()> isPaused,
           std::function<void(StatusMenuCommand)> onCommand);
  ~DBusMenu() override;
  DBusMenu(const DBusMenu&) = delete;
  DBusMenu& operator=(const DBusMenu&) = delete;

  /// Reads whether sampling is paused, and announces a change to the panels.
  /// Returns whether it has.
  bool refresh();

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  static int getLayout(sd_bus_message* call, void* self, sd_bus_error* error);
  static int getGroupProperties(sd_bus_message* call, void* self, sd_bus_error* error);
  static int getProperty(sd_bus_message* call, void* self, sd_bus_error* error);
  static int event(sd_bus_message* call, void* self, sd_bus_error* error);
  static int eventGroup(sd_bus_message* call, void* self, sd_bus_error* error);
  static int aboutToShow(sd_bus_message* call, void* self, sd_bus_error* error);
  static int aboutToShowGroup(sd_bus_message* call, void* self, sd_bus_error* error);
  static const sd_bus_vtable table[];

  int appendItem(sd_bus_message* reply, std::int32_t id, int depth) const;
  int appendChildren(sd_bus_message* reply, int depth) const;
  int appendProperties(sd_bus_message* message, std::int32_t id) const;
  [[nodiscard]] static bool isItem(std::int32_t id);
  bool take(std::int32_t id, const char* eventName);

  BusConnection& connection_;
  std::function<bool()> isPaused_;
  std::function<void(StatusMenuCommand)> onCommand_;
  sd_bus* bus_ = nullptr;
  bool wasPaused_ = false;
  std::uint32_t revision_ = 1;
  BusSlot object_;
};

}  // namespace vantora
