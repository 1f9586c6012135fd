// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/power/battery_reminder.hpp"
#include "platform/linux/power/logind_sleep.hpp"
#include "platform/linux/power/settled_call.hpp"
#include "platform/linux/power/uevent_watch.hpp"
#include "ports/power_events.hpp"

namespace vantora {

/// Where the system's message bus listens, from the value of DBUS_SYSTEM_BUS_ADDRESS (null
/// when unset), else the place where D-Bus puts it.
[[nodiscard]] std::string systemBusAddress(const char* environmentAddress);

/// Power events from the kernel and from logind. Sleeps while nothing happens, except that a
/// machine with a battery is reminded of it once a minute.
class LinuxPowerEvents final : public PowerEvents {
 public:
  /// Loop and queue are the main thread's and must outlive the events.
  LinuxPowerEvents(uv_loop_t& loop, TaskQueue& queue, std::string busAddress,
                   std::string powerSupplyRoot = "/sys/class/power_supply");
  ~LinuxPowerEvents() override;
  LinuxPowerEvents(const LinuxPowerEvents&) = delete;
  LinuxPowerEvents& operator=(const LinuxPowerEvents&) = delete;

  void start(Handlers handlers) override;

 private:
  Handlers handlers_;
  BusConnection bus_;
  LogindSleep sleep_;
  BatteryReminder reminder_;
  SettledCall powerSourceChanged_;
  UeventWatch uevents_;
};

}  // namespace vantora
