// SPDX-License-Identifier: MIT
//
// Our own declarations; see CoreFoundation/CoreFoundation.h beside.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef const struct CF_BRIDGED_TYPE(id) __SCDynamicStore* SCDynamicStoreRef;

CFPropertyListRef _Nullable SCDynamicStoreCopyValue(SCDynamicStoreRef _Nullable store,
                                                    CFStringRef _Nonnull key) CF_RETURNS_RETAINED;
// The key of the primary interface's name in State:/Network/Global/IPv4.
extern const CFStringRef _Nonnull kSCDynamicStorePropNetPrimaryInterface;

#ifdef __cplusplus
}
#endif
