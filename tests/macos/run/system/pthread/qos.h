// SPDX-License-Identifier: MIT
#pragma once

typedef enum { QOS_CLASS_USER_INITIATED = 0x19, QOS_CLASS_UTILITY = 0x11 } qos_class_t;
