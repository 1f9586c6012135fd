// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "platform/linux/bus/bus_connection.hpp"
#include "ports/notifier.hpp"

namespace vantora {

/// The desktop's notifications (freedesktop.org, Desktop Notifications Specification 1.2).
/// A message is dropped while there is no bus.
class DesktopNotifier final : public Notifier {
 public:
  /// The connection must outlive the notifier.
  explicit DesktopNotifier(const BusConnection& connection) : connection_(connection) {}

  void notify(const std::string& message) override;

 private:
  const BusConnection& connection_;
};

}  // namespace vantora
