// SPDX-License-Identifier: MIT
//
// The order of the processor's tick counters and the flavour that fetches them.
#include <mach/mach.h>

#include "sampling/apple/mach_ticks.hpp"

static_assert(HOST_CPU_LOAD_INFO == 3);
static_assert(HOST_CPU_LOAD_INFO_COUNT == vantora::MachTicks::counterCount);
static_assert(sizeof(host_cpu_load_info_data_t) == 16);
static_assert(CPU_STATE_USER == 0 && CPU_STATE_SYSTEM == 1 && CPU_STATE_IDLE == 2 &&
              CPU_STATE_NICE == 3);
static_assert(KERN_SUCCESS == 0);
