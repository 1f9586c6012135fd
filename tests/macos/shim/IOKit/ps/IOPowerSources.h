// SPDX-License-Identifier: MIT
//
// Our own declarations; see CoreFoundation/CoreFoundation.h above.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef void (*IOPowerSourceCallbackType)(void* context);

// The reference documentation marks none of these; by Core Foundation's naming rule what
// a Copy or Create function returns is the caller's, and a Get function's is not.
CFTypeRef IOPSCopyPowerSourcesInfo(void) CF_RETURNS_RETAINED;
CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob) CF_RETURNS_RETAINED;
CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef ps) CF_RETURNS_NOT_RETAINED;
CFDictionaryRef IOPSCopyExternalPowerAdapterDetails(void) CF_RETURNS_RETAINED;
CFRunLoopSourceRef IOPSNotificationCreateRunLoopSource(IOPowerSourceCallbackType callback,
                                                       void* context) CF_RETURNS_RETAINED;

#ifdef __cplusplus
}
#endif
