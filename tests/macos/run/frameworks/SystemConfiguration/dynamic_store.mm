// SPDX-License-Identifier: MIT
//
// The dynamic store. Played: the value of State:/Network/Global/IPv4, which names the primary
// interface; null without a network. The caller owns it.
#import <Foundation/Foundation.h>
#import <SystemConfiguration/SystemConfiguration.h>

#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"
#include "objc/autorelease_pools.hpp"
#include "objc/objects.hpp"

extern "C" {

const CFStringRef kSCDynamicStorePropNetPrimaryInterface = CFSTR("PrimaryInterface");

CFPropertyListRef SCDynamicStoreCopyValue(SCDynamicStoreRef, CFStringRef key) {
  // As the system's own function may.
  standin::autorelease((__bridge_retained standin::Object*)[[NSObject alloc] init]);
  return standin::withMachine([&](standin::Machine& machine) -> CFPropertyListRef {
    if (standin::textOf((__bridge NSString*)key) != "State:/Network/Global/IPv4" ||
        !machine.primaryInterface) {
      return nullptr;
    }
    return (__bridge_retained CFPropertyListRef)standin::newDictionary(
        {{@"PrimaryInterface", standin::newString(*machine.primaryInterface)}});
  });
}

}  // extern "C"
