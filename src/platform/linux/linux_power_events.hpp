// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "app/power_events.hpp"
#include "platform/linux/battery_level_watch.hpp"
#include "platform/linux/bus_connection.hpp"
#include "platform/linux/logind_sleep.hpp"
#include "platform/linux/uevent_watch.hpp"

namespace vantora {

/// Where the system's message bus listens, from the value of DBUS_SYSTEM_BUS_ADDRESS (null
/// when unset), else the place that the D-Bus specification names.
[[nodiscard]] std::string systemBusAddress(const char* environmentAddress);

/// Power events from the kernel and from logind. Sleeps while nothing happens, except for a
/// look at the battery's level once a minute where there is a battery.
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
  BatteryLevelWatch levels_;
  UeventWatch uevents_;
};

}  // namespace vantora
