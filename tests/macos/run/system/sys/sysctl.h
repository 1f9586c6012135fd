// SPDX-License-Identifier: MIT
#pragma once

#include <sys/types.h>

extern "C" int sysctl(int* name, u_int nameCount, void* old, size_t* oldSize, void* replacement,
                      size_t replacementSize);
