// SPDX-License-Identifier: MIT
//
// On macOS a thread names itself alone.
#pragma once

#include_next <pthread.h>

#ifdef __cplusplus
// Not C, wherever this is included: there the name has two parameters.
extern "C++" inline int pthread_setname_np(const char* name) {
  return pthread_setname_np(pthread_self(), name);
}
#endif
