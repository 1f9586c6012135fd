// SPDX-License-Identifier: MIT
#include "platform/linux/power/linux_power_events.hpp"

#include <utility>

namespace vantora {

std::string systemBusAddress(const char* environmentAddress) {
  const std::string address = environmentAddress != nullptr ? environmentAddress : "";
  return address.empty() ? "unix:path=/var/run/dbus/system_bus_socket" : address;
}

LinuxPowerEvents::LinuxPowerEvents(uv_loop_t& loop, TaskQueue& queue, std::string busAddress,
                                   std::string powerSupplyRoot)
    : bus_(loop, queue, std::move(busAddress)),
      sleep_([this](SleepHold hold) { handlers_.onWillSleep(std::move(hold)); },
             [this] { handlers_.onDidWake(); }),
      reminder_(queue, std::move(powerSupplyRoot), [this] { handlers_.onBatteryDue(); }),
      powerSourceChanged_(queue,
                          [this] {
                            reminder_.refresh();
                            handlers_.onPowerSourceChange();
                          }),
      uevents_(loop, [this] { powerSourceChanged_.request(); }) {}

LinuxPowerEvents::~LinuxPowerEvents() {
  bus_.remove(sleep_);
}

void LinuxPowerEvents::start(Handlers handlers) {
  handlers_ = std::move(handlers);
  reminder_.refresh();
  // Where the system passes no events on, the reminder still brings what changed.
  (void)uevents_.start();
  bus_.add(sleep_);
  bus_.open();
}

}  // namespace vantora
