// SPDX-License-Identifier: MIT
//
// Our own declarations of the Core Foundation names that Vantora uses, written from
// Apple's public documentation so that scripts/check-macos can compile without a Mac.
// Never on the include path of a real build.
#pragma once

#ifndef VANTORA_MACOS_CHECK
#error "tests/macos/shim is for scripts/check-macos only"
#endif

#include <Availability.h>
#include <TargetConditionals.h>
#include <os/availability.h>
#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>
#include <sys/types.h>

#define CF_BRIDGED_TYPE(T) __attribute__((objc_bridge(T)))
#define CF_BRIDGED_MUTABLE_TYPE(T) __attribute__((objc_bridge_mutable(T)))
#define CF_RETURNS_RETAINED __attribute__((cf_returns_retained))
#define CF_RETURNS_NOT_RETAINED __attribute__((cf_returns_not_retained))
#define CF_RELEASES_ARGUMENT __attribute__((cf_consumed))

#ifdef __cplusplus
extern "C" {
#endif
#pragma clang arc_cf_code_audited begin

typedef unsigned char Boolean;
typedef uint8_t UInt8;
typedef signed long CFIndex;
typedef unsigned long CFTypeID;
typedef unsigned long CFOptionFlags;
typedef double CFTimeInterval;
typedef double CGFloat;
typedef uint32_t CFStringEncoding;

typedef const CF_BRIDGED_TYPE(id) void* CFTypeRef;
typedef const CF_BRIDGED_TYPE(id) void* CFPropertyListRef;
typedef const struct CF_BRIDGED_TYPE(NSString) __CFString* CFStringRef;
typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFNumber* CFNumberRef;
typedef const struct CF_BRIDGED_TYPE(NSNumber) __CFBoolean* CFBooleanRef;
typedef const struct CF_BRIDGED_TYPE(NSArray) __CFArray* CFArrayRef;
typedef const struct CF_BRIDGED_TYPE(NSDictionary) __CFDictionary* CFDictionaryRef;
typedef struct CF_BRIDGED_MUTABLE_TYPE(NSMutableDictionary) __CFDictionary* CFMutableDictionaryRef;
typedef struct CF_BRIDGED_TYPE(NSError) __CFError* CFErrorRef;
typedef const struct CF_BRIDGED_TYPE(id) __CFAllocator* CFAllocatorRef;
typedef struct CF_BRIDGED_MUTABLE_TYPE(id) __CFRunLoop* CFRunLoopRef;
typedef struct CF_BRIDGED_MUTABLE_TYPE(id) __CFRunLoopSource* CFRunLoopSourceRef;
typedef struct CF_BRIDGED_MUTABLE_TYPE(id) __CFRunLoopObserver* CFRunLoopObserverRef;
typedef CFStringRef CFRunLoopMode;
typedef CFStringRef CFErrorDomain;

struct CGPoint {
  CGFloat x;
  CGFloat y;
};
typedef struct CGPoint CGPoint;
struct CGSize {
  CGFloat width;
  CGFloat height;
};
typedef struct CGSize CGSize;
struct CGRect {
  CGPoint origin;
  CGSize size;
};
typedef struct CGRect CGRect;

enum : CFStringEncoding { kCFStringEncodingUTF8 = 0x08000100 };
typedef enum : CFIndex {
  kCFNumberSInt64Type = 4,
  kCFNumberFloat64Type = 6,
} CFNumberType;

extern const CFAllocatorRef kCFAllocatorDefault;
extern const CFRunLoopMode kCFRunLoopDefaultMode;
extern const CFRunLoopMode kCFRunLoopCommonModes;
extern const CFErrorDomain kCFErrorDomainPOSIX;

#define CFSTR(text) ((CFStringRef)__builtin___CFStringMakeConstantString("" text ""))

CFTypeRef CFRetain(CFTypeRef cf);
void CFRelease(CFTypeRef cf);
CFTypeID CFGetTypeID(CFTypeRef cf);

CFTypeID CFArrayGetTypeID(void);
CFIndex CFArrayGetCount(CFArrayRef array);
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index);

CFTypeID CFBooleanGetTypeID(void);
Boolean CFBooleanGetValue(CFBooleanRef boolean);

CFTypeID CFDictionaryGetTypeID(void);
CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary);
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key);
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values);

CFErrorRef CFErrorCreate(CFAllocatorRef allocator, CFErrorDomain domain, CFIndex code,
                         CFDictionaryRef userInfo);
CFStringRef CFErrorCopyDescription(CFErrorRef error);

CFTypeID CFNumberGetTypeID(void);
Boolean CFNumberGetValue(CFNumberRef number, CFNumberType type, void* value);

CFTypeID CFStringGetTypeID(void);
CFStringRef CFStringCreateWithBytes(CFAllocatorRef allocator, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean isExternalRepresentation);
CFIndex CFStringGetLength(CFStringRef string);
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding);
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size,
                           CFStringEncoding encoding);

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef applicationID);
void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef applicationID);
Boolean CFPreferencesAppSynchronize(CFStringRef applicationID);

typedef enum : CFOptionFlags { kCFRunLoopBeforeWaiting = 1UL << 5 } CFRunLoopActivity;
typedef struct {
  CFIndex version;
  void* info;
  const void* (*retain)(const void* info);
  void (*release)(const void* info);
  CFStringRef (*copyDescription)(const void* info);
} CFRunLoopObserverContext;
typedef void (*CFRunLoopObserverCallBack)(CFRunLoopObserverRef observer,
                                          CFRunLoopActivity activity, void* info);
CFRunLoopObserverRef CFRunLoopObserverCreate(CFAllocatorRef allocator, CFOptionFlags activities,
                                             Boolean repeats, CFIndex order,
                                             CFRunLoopObserverCallBack callout,
                                             CFRunLoopObserverContext* context);

typedef enum : int32_t { kCFRunLoopRunStopped = 2 } CFRunLoopRunResult;
CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds,
                                      Boolean returnAfterSourceHandled);
void CFRunLoopRun(void);
void CFRunLoopStop(CFRunLoopRef loop);
CFRunLoopRef CFRunLoopGetMain(void);
void CFRunLoopAddObserver(CFRunLoopRef loop, CFRunLoopObserverRef observer, CFRunLoopMode mode);
void CFRunLoopRemoveObserver(CFRunLoopRef loop, CFRunLoopObserverRef observer,
                             CFRunLoopMode mode);
void CFRunLoopAddSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);
void CFRunLoopRemoveSource(CFRunLoopRef loop, CFRunLoopSourceRef source, CFRunLoopMode mode);

#pragma clang arc_cf_code_audited end
#ifdef __cplusplus
}
#endif
