// SPDX-License-Identifier: MIT
#pragma once

typedef long NSInteger;
typedef unsigned long NSUInteger;
