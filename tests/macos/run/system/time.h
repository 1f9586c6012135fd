// SPDX-License-Identifier: MIT
//
// clock_gettime_nsec_np(3), which frameworks/System/clock.cpp plays.
#include_next <time.h>

#ifndef VANTORA_STAND_IN_TIME
#define VANTORA_STAND_IN_TIME
#include <stdint.h>

#define CLOCK_UPTIME_RAW CLOCK_MONOTONIC

#ifdef __cplusplus
extern "C" uint64_t clock_gettime_nsec_np(clockid_t clock);
#endif
#endif
