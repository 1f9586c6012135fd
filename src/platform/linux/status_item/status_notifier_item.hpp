// SPDX-License-Identifier: MIT
//
// An object on the session bus, /StatusNotifierItem where there is one item:
// org.kde.StatusNotifierItem as freedesktop's StatusNotifierItem describes it, with the label that
// GNOME's extension takes from Ayatana's. It stores nothing: panels ask, the content answers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "platform/linux/panels/ink.hpp"
#include "status/bitmap.hpp"

namespace vantora {

/// What the item answers when a panel asks. On the main thread, from inside the loop.
class StatusNotifierContent {
 public:
  virtual ~StatusNotifierContent() = default;

  /// One size of the icon, made on demand.
  struct Picture {
    const AlphaBitmap& bitmap;  ///< Valid until the next picture().
    double cornerRadius = 0;    ///< Of its plate, in pixels.
  };
  [[nodiscard]] virtual std::size_t pictureCount() const = 0;
  [[nodiscard]] virtual Picture picture(std::size_t index) = 0;
  [[nodiscard]] virtual Ink ink() const = 0;

  [[nodiscard]] virtual std::string toolTip() const = 0;
  [[nodiscard]] virtual std::string accessibleDescription() const = 0;
  [[nodiscard]] virtual std::string label() const = 0;
};

/// What a panel passes on of the user's clicks. From inside of the loop, in the middle of
/// a message.
class StatusNotifierEvents {
 public:
  virtual ~StatusNotifierEvents() = default;
  /// `token` is what the panel gave for bringing a window to the front, or empty.
  virtual void activated(std::string token) = 0;
};

/// How panels know the item and keep it apart from others.
struct StatusNotifierIdentity {
  std::string path = "/StatusNotifierItem";
  std::string id = "vantora";
  std::string title = "Vantora";
};

/// Lives on the main thread.
class StatusNotifierItem final : public BusConnection::Listener {
 public:
  StatusNotifierItem(BusConnection& connection, StatusNotifierContent& content,
                     StatusNotifierEvents& events, StatusNotifierIdentity identity = {});
  ~StatusNotifierItem() override;
  StatusNotifierItem(const StatusNotifierItem&) = delete;
  StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

  /// Whether the item has a label at all. A panel that finds one may show it instead of
  /// the picture, so only GNOME is given it.
  void setHasLabel(bool hasLabel);

  /// From now on the item has a menu, at this path on the same connection. Panels ask for
  /// it when the item registers. `menuPath` stays valid.
  void setMenu(const char* menuPath);

  /// Announces to panels that they should ask again. Does nothing without a connection.
  void announceIcon();
  void announceToolTip();
  void announceLabel(const std::string& label);

  void busConnected(sd_bus& bus) override;
  void busLost() override;

  [[nodiscard]] StatusNotifierContent& content() { return content_; }
  [[nodiscard]] const StatusNotifierIdentity& identity() const { return identity_; }
  [[nodiscard]] const char* menuPath() const { return menuPath_; }

 private:
  static int onActivate(sd_bus_message* call, void* self, sd_bus_error* error);
  static int onToken(sd_bus_message* call, void* self, sd_bus_error* error);
  static const sd_bus_vtable itemTable[];

  void exportTable(BusSlot& object, const sd_bus_vtable* table);
  void exportLabel();
  void exportMenu();
  void announce(const char* signal);

  BusConnection& connection_;
  StatusNotifierContent& content_;
  StatusNotifierEvents& events_;
  const StatusNotifierIdentity identity_;
  std::string token_;  // for the click that follows
  const char* menuPath_ = nullptr;
  sd_bus* bus_ = nullptr;
  bool hasLabel_ = false;
  BusSlot object_;
  BusSlot labelObject_;
  BusSlot menuObject_;
};

}  // namespace vantora
