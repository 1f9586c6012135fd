// SPDX-License-Identifier: MIT
//
// Mach's host. Played: every call for its port gives one send right more, which is given back
// once; its tick counters count on.
#include <mach/mach.h>

#include "machine/machine.hpp"
#include "objc/fault.hpp"

namespace {

constexpr mach_port_t hostPort = 0x3003;

}  // namespace

extern "C" {

const mach_port_t standInTask = 0x1003;

mach_port_t mach_host_self() {
  return standin::withMachine([](standin::Machine& machine) {
    ++machine.hostRights;
    return hostPort;
  });
}

kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t name) {
  return standin::withMachine([&](standin::Machine& machine) {
    if (task != standInTask || name != hostPort || --machine.hostRights < 0) {
      standin::fault("mach_port_deallocate is called for a right that is not held");
    }
    return KERN_SUCCESS;
  });
}

kern_return_t host_statistics(host_t host, int flavor, host_info_t info,
                              mach_msg_type_number_t* count) {
  if (host != hostPort || flavor != HOST_CPU_LOAD_INFO || *count != HOST_CPU_LOAD_INFO_COUNT) {
    standin::fault("host_statistics is called with flavor %d and count %u", flavor, *count);
  }
  return standin::withMachine([&](standin::Machine& machine) -> kern_return_t {
    ++machine.calls.hostStatistics;
    if (machine.hostStatus != KERN_SUCCESS) {
      return machine.hostStatus;
    }
    // A thousand ticks pass between two readings, the busy ones half user's, half system's.
    const auto busy = static_cast<std::uint32_t>(machine.busyPercent * 10);
    machine.ticks[0] += busy / 2;
    machine.ticks[1] += busy - busy / 2;
    machine.ticks[2] += 1000 - busy;
    for (int i = 0; i < HOST_CPU_LOAD_INFO_COUNT; ++i) {
      info[i] = static_cast<std::int32_t>(machine.ticks[i]);
    }
    return KERN_SUCCESS;
  });
}

}  // extern "C"
