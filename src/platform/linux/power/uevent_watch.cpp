// SPDX-License-Identifier: MIT
#include "platform/linux/power/uevent_watch.hpp"

#include <utility>

namespace vantora {

UeventWatch::UeventWatch(uv_loop_t& loop, std::function<void()> onChange)
    : loop_(loop), onChange_(std::move(onChange)) {}

UeventWatch::~UeventWatch() {
  if (poll_ != nullptr) {
    uv_poll_stop(poll_);
    uv_close(reinterpret_cast<uv_handle_t*>(poll_),
             [](uv_handle_t* handle) { delete reinterpret_cast<uv_poll_t*>(handle); });
  }
}

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
  auto poll = std::make_unique<uv_poll_t>();
  if (uv_poll_init(&loop_, poll.get(), sd_event_get_fd(events)) != 0) {
    return false;
  }
  poll_ = poll.release();
  poll_->data = this;
  uv_poll_start(poll_, UV_READABLE, [](uv_poll_t* handle, int, int) {
    static_cast<UeventWatch*>(handle->data)->dispatch();
  });
  return true;
}

void UeventWatch::dispatch() {
  int result = 0;
  do {
    result = sd_event_run(events_.get(), 0);
  } while (result > 0);
  if (result < 0) {
    uv_poll_stop(poll_);  // Broken for good: better silent than spinning.
  }
  if (std::exchange(changed_, false)) {
    onChange_();
  }
}

}  // namespace vantora
