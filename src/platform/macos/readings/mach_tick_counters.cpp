// SPDX-License-Identifier: MIT
#include "platform/macos/readings/mach_tick_counters.hpp"

#include <mach/mach.h>

#include "sampling/apple/mach_ticks.hpp"

namespace vantora {
namespace {

// A send right to the host, given back when destroyed: mach_host_self counts one up at
// every call.
class HostPort {
 public:
  HostPort() : port_(mach_host_self()) {}
  ~HostPort() { mach_port_deallocate(mach_task_self(), port_); }
  HostPort(const HostPort&) = delete;
  HostPort& operator=(const HostPort&) = delete;
  [[nodiscard]] host_t get() const { return port_; }

 private:
  host_t port_;
};

}  // namespace

Result<CPUTicks> MachTickCounters::read() {
  const HostPort host;
  host_cpu_load_info_data_t load{};
  mach_msg_type_number_t count = HOST_CPU_LOAD_INFO_COUNT;
  const kern_return_t status =
      host_statistics(host.get(), HOST_CPU_LOAD_INFO, reinterpret_cast<host_info_t>(&load), &count);
  if (status != KERN_SUCCESS) {
    return Fault::failed(MachTicks::failure(status));
  }
  return MachTicks::fromLoad(load.cpu_ticks);
}

TickTexts MachTickCounters::texts() const {
  return MachTicks::texts;
}

}  // namespace vantora
