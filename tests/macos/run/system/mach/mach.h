// SPDX-License-Identifier: MIT
//
// The names of Mach that Vantora uses, with the values of the open headers (xnu,
// osfmk/mach/host_info.h, machine.h, kern_return.h).
#pragma once

#include <stdint.h>

extern "C" {

typedef int kern_return_t;
typedef uint32_t mach_port_t;
typedef mach_port_t host_t;
typedef mach_port_t task_port_t;
typedef uint32_t mach_msg_type_number_t;
typedef int32_t* host_info_t;

#define KERN_SUCCESS 0
#define HOST_CPU_LOAD_INFO 3
#define HOST_CPU_LOAD_INFO_COUNT 4

struct host_cpu_load_info {
  uint32_t cpu_ticks[4];
};
typedef struct host_cpu_load_info host_cpu_load_info_data_t;

extern const mach_port_t standInTask;
#define mach_task_self() standInTask
mach_port_t mach_host_self(void);
kern_return_t mach_port_deallocate(mach_port_t task, mach_port_t name);
kern_return_t host_statistics(host_t host, int flavor, host_info_t info,
                              mach_msg_type_number_t* count);
}
