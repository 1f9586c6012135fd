// SPDX-License-Identifier: MIT
#pragma once

#define TARGET_OS_OSX 1
