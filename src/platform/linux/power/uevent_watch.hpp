// SPDX-License-Identifier: MIT
//
// Reports when the kernel announces a change of a power supply: an adapter plugged in or out, a
// battery that came, went, or changed its status.
#pragma once

#include <systemd/sd-device.h>
#include <systemd/sd-event.h>
#include <uv.h>

#include <functional>
#include <memory>

#include "runtime/readable_watch.hpp"

namespace vantora {

/// Listens to what udev passes on. The kernel drops the events of all other subsystems before
/// they wake anyone. Lives on the loop's thread.
class UeventWatch {
 public:
  /// `onChange` is called from the loop, once for the events that arrived together.
  UeventWatch(uv_loop_t& loop, std::function<void()> onChange);
  UeventWatch(const UeventWatch&) = delete;
  UeventWatch& operator=(const UeventWatch&) = delete;

  /// False where the system has no such events for us; onChange is then never called.
  [[nodiscard]] bool start();

 private:
  struct Unref {
    void operator()(sd_event* event) const { sd_event_unref(event); }
    void operator()(sd_device_monitor* monitor) const { sd_device_monitor_unref(monitor); }
  };
  void dispatch();

  uv_loop_t& loop_;
  std::function<void()> onChange_;
  // The monitor speaks through an event loop of its own, of which ours watches the descriptor.
  std::unique_ptr<sd_event, Unref> events_;
  std::unique_ptr<sd_device_monitor, Unref> monitor_;
  ReadableWatch watch_;
  bool changed_ = false;
};

}  // namespace vantora
