// SPDX-License-Identifier: MIT
//
// A panel for tests: the watcher with which items register, and the host that asks them.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"

namespace vantora::test {

struct Pixmap {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> bytes;
};

/// What an item answers to GetAll, by type.
struct ItemProperties {
  std::map<std::string, std::string> texts;
  std::map<std::string, int> numbers;  ///< Booleans too.
  std::vector<Pixmap> pixmaps;         ///< IconPixmap
  std::map<std::string, std::vector<Pixmap>> others;
  std::string toolTipTitle;
  std::string toolTipDescription;
};

class ScriptedPanel final : public BusConnection::Listener {
 public:
  /// How the panel behaves, before it comes up.
  struct Script {
    bool hasHost = true;
    int refusals = 0;  ///< The first registrations that it answers with an error.
  };

  explicit ScriptedPanel(BusConnection& connection);
  ScriptedPanel(BusConnection& connection, Script script);
  ~ScriptedPanel() override;

  void busConnected(sd_bus& bus) override;
  void busLost() override;

  /// Names that have registered, in order; of an item with a path, the connection with it.
  [[nodiscard]] const std::vector<std::string>& items() const { return items_; }
  /// Members of the items' signals, in order, the arguments of a label after a colon. Those of
  /// items with a path name it.
  [[nodiscard]] const std::vector<std::string>& signals() const { return signals_; }
  void forgetSignals() { signals_.clear(); }

  void setHasHost(bool hasHost);
  /// Whether an item has asked since it came up if a panel shows its items.
  [[nodiscard]] bool hasAnsweredForHost() const { return hasAnsweredForHost_; }

  /// Announces that an item has gone, under the name that panels of this kind give it.
  void drop(const std::string& item);

  /// Asks the item that registered `back` before the latest for all of its properties;
  /// `properties` has them later, nothing in them when the item is gone.
  void ask(std::size_t back = 0);
  std::optional<ItemProperties> properties;

 private:
  static int onRegister(sd_bus_message* call, void* self, sd_bus_error* error);
  static int onSignal(sd_bus_message* signal, void* self, sd_bus_error* error);
  static int onProperties(sd_bus_message* reply, void* self, sd_bus_error* error);
  static int getHasHost(sd_bus* bus, const char* path, const char* interface, const char* property,
                        sd_bus_message* reply, void* self, sd_bus_error* error);
  static const sd_bus_vtable table[];

  BusConnection& connection_;
  Script script_;
  bool hasAnsweredForHost_ = false;
  sd_bus* bus_ = nullptr;
  std::vector<std::string> items_;
  std::vector<std::string> signals_;
  BusSlot object_;
  BusSlot match_;
  BusSlot name_;
  BusSlot call_;
};

}  // namespace vantora::test
