// SPDX-License-Identifier: MIT
#pragma once

#include <os/availability.h>

#ifndef __unused
#define __unused __attribute__((unused))
#endif
