// SPDX-License-Identifier: MIT
//
// The compiler's package has the system's C headers but not this one. Values of the
// Internet assigned numbers for interface types (ifType).
#pragma once

#define IFT_ETHER 0x6
