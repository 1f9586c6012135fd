// SPDX-License-Identifier: MIT
//
// For panels that keep only squares: an item for each visible module, in a row.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "platform/linux/panels/panel.hpp"
#include "platform/linux/panels/status_item_picture.hpp"
#include "platform/linux/status_item/dbus_menu.hpp"
#include "platform/linux/status_item/status_notifier_item.hpp"

namespace vantora {

/// Lives on the main thread, as long as one panel does.
///
/// Panels put a new item beside those that they have. So when a module comes, goes or moves,
/// all of them are withdrawn and registered anew. They share a connection of their own:
/// a panel takes the items out when it ends, and there is no other way to withdraw one.
class ModuleItems final : private BusConnection::Listener {
 public:
  struct Parts {
    const BusConnection& connection;  ///< The session's.
    TaskQueue& queue;
    TextEngine& engine;
    const Panel& panel;
    StatusNotifierEvents& events;
    std::function<Ink()> ink;
    std::function<bool()> isPaused;  ///< As DBusMenu asks for it.
    std::function<void(StatusMenuCommand)> onCommand;
  };

  /// Everything given here outlives it.
  explicit ModuleItems(Parts parts);
  ~ModuleItems() override;
  ModuleItems(const ModuleItems&) = delete;
  ModuleItems& operator=(const ModuleItems&) = delete;

  /// Announces what has changed. Not from inside of a panel's call to one of the items.
  void show(const StatusPresentation& presentation);

  /// The ink is another one.
  void announceIcons();

 private:
  class Item;

  void busConnected(sd_bus& bus) override;
  void busLost() override;
  static int onRegistered(sd_bus_message* reply, void* self, sd_bus_error* error);

  [[nodiscard]] bool isSameRow(const std::vector<ModuleSquare>& squares) const;
  void putUp(const std::vector<ModuleSquare>& squares);
  void putUpAgain();
  void takeDown();
  void registerAll();

  Parts parts_;
  std::unique_ptr<BusConnection> connection_;
  std::unique_ptr<DBusMenu> menu_;
  std::vector<std::unique_ptr<Item>> items_;  // from the left
  sd_bus* bus_ = nullptr;
  int failedRegistrations_ = 0;  // with this panel
  std::vector<BusSlot> calls_;
  TimerHandle retry_;
};

}  // namespace vantora
