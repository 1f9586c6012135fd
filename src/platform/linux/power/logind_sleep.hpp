// SPDX-License-Identifier: MIT
//
// Sleep and wake as logind announces them, with a lock that lets it wait for us.
// https://systemd.io/INHIBITOR_LOCKS/, org.freedesktop.login1(5)
#pragma once

#include <functional>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "ports/power_events.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora {

/// Holds a delay lock all the time that the machine is awake: without one, logind announces
/// the sleep and does not wait. A logind that is not there, comes later, restarts or refuses
/// the lock is an ordinary state. Lives on the connection's thread.
class LogindSleep final : public BusConnection::Listener {
 public:
  /// `onWillSleep` gets the lock to let go of; null when there was none. `onDidWake` follows
  /// once on each of them, also when the bus or logind went away meanwhile.
  LogindSleep(std::function<void(SleepHold)> onWillSleep, std::function<void()> onDidWake);

  void busConnected(sd_bus& bus) override;
  void busLost() override;

 private:
  static int prepareForSleep(sd_bus_message* message, void* self, sd_bus_error* error);
  static int ownerChanged(sd_bus_message* message, void* self, sd_bus_error* error);
  static int inhibited(sd_bus_message* message, void* self, sd_bus_error* error);

  void inhibit();
  void fallAsleep();
  void wake();
  void forgetService();

  std::function<void(SleepHold)> onWillSleep_;
  std::function<void()> onDidWake_;
  sd_bus* bus_ = nullptr;
  BusSlot signal_;
  BusSlot owner_;
  BusSlot call_;
  UniqueFd lock_;
  bool isAsleep_ = false;
};

}  // namespace vantora
