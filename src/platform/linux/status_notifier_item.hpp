// SPDX-License-Identifier: MIT
//
// The object /StatusNotifierItem on the session bus: org.kde.StatusNotifierItem as
// freedesktop's StatusNotifierItem describes it, with the label that GNOME's extension
// takes from Ayatana's. It holds nothing: panels ask, the content answers.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "platform/linux/bus_connection.hpp"
#include "platform/linux/bus_slot.hpp"
#include "platform/linux/status_item_host.hpp"
#include "status/bitmap.hpp"

namespace vantora {

/// What the item answers when a panel asks. On the main thread, from inside the loop.
class StatusNotifierContent {
 public:
  virtual ~StatusNotifierContent() = default;

  /// One size of the icon, made on demand and not kept.
  struct Picture {
    AlphaBitmap bitmap;
    double cornerRadius = 0;  ///< Of its plate, in pixels.
  };
  [[nodiscard]] virtual std::size_t pictureCount() const = 0;
  [[nodiscard]] virtual Picture picture(std::size_t index) = 0;
  [[nodiscard]] virtual Ink ink() const = 0;

  [[nodiscard]] virtual std::string toolTip() const = 0;
  [[nodiscard]] virtual std::string accessibleDescription() const = 0;
  [[nodiscard]] virtual std::string label() const = 0;
};

/// Lives on the main thread.
class StatusNotifierItem final : public BusConnection::Listener {
 public:
  StatusNotifierItem(BusConnection& connection, StatusNotifierContent& content);
  ~StatusNotifierItem() override;
  StatusNotifierItem(const StatusNotifierItem&) = delete;
  StatusNotifierItem& operator=(const StatusNotifierItem&) = delete;

  /// Whether the item has a label at all. A panel that finds one may show it instead of
  /// the picture, so only GNOME is given it.
  void setHasLabel(bool hasLabel);

  /// Tells the panels that they should ask again. Nothing while there is no connection.
  void announceIcon();
  void announceToolTip();
  void announceLabel(const std::string& label);

  void busConnected(sd_bus& bus) override;
  void busLost() override;

  [[nodiscard]] StatusNotifierContent& content() { return content_; }

 private:
  void exportLabel();

  BusConnection& connection_;
  StatusNotifierContent& content_;
  sd_bus* bus_ = nullptr;
  bool hasLabel_ = false;
  BusSlot object_;
  BusSlot labelObject_;
};

}  // namespace vantora
