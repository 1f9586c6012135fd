// SPDX-License-Identifier: MIT
#include "platform/linux/power/uevent_watch.hpp"

#include <utility>

namespace vantora {

UeventWatch::UeventWatch(uv_loop_t& loop, std::function<void()> onChange)
    : loop_(loop), onChange_(std::move(onChange)) {}

bool UeventWatch::start() {
  sd_event* events = nullptr;
  sd_device_monitor* monitor = nullptr;
  if (sd_event_new(&events) < 0) {
    return false;
  }
  events_.reset(events);
  if (sd_device_monitor_new(&monitor) < 0) {
    return false;
  }
  monitor_.reset(monitor);
  const auto received = [](sd_device_monitor*, sd_device*, void* watch) {
    static_cast<UeventWatch*>(watch)->changed_ = true;
    return 0;
  };
  if (sd_device_monitor_filter_add_match_subsystem_devtype(monitor, "power_supply", nullptr) < 0 ||
      sd_device_monitor_attach_event(monitor, events) < 0 ||
      sd_device_monitor_start(monitor, received, this) < 0) {
    return false;
  }
  return watch_.start(loop_, sd_event_get_fd(events), [this] { dispatch(); }) == 0;
}

void UeventWatch::dispatch() {
  int result = 0;
  do {
    result = sd_event_run(events_.get(), 0);
  } while (result > 0);
  if (result < 0) {
    watch_.stop();  // Broken for good: better silent than spinning.
  }
  if (std::exchange(changed_, false)) {
    onChange_();
  }
}

}  // namespace vantora
