// SPDX-License-Identifier: MIT
//
// IOKit's power sources. Played: descriptions belong to the blob that they were asked of;
// numbers are integers; the notification's source calls back on the run loop to which it was
// added. As the system's own functions may, these autorelease what they need on the way.
#import <Foundation/Foundation.h>
#import <IOKit/ps/IOPowerSources.h>

#include "dispatch/main_run_loop.hpp"
#include "frameworks/CoreFoundation/run_loop_source.hpp"
#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"
#include "objc/autorelease_pools.hpp"
#include "objc/fault.hpp"
#include "objc/objects.hpp"

namespace {

__weak StandInRunLoopSource* notification;

void autoreleaseSomething() {
  standin::autorelease((__bridge_retained standin::Object*)[[NSObject alloc] init]);
}

NSDictionary* describe(const standin::PowerSource& source) {
  using standin::newBoolean;
  using standin::newInteger;
  using standin::newString;
  standin::Entries entries = {
      {@"Type", newString(source.type)},
      {@"Power Source State", newString(source.state)},
      {@"Is Charging", newBoolean(source.isCharging)},
      {@"Time to Empty", newInteger(static_cast<long long>(source.minutesToEmpty))},
      {@"Time to Full Charge", newInteger(static_cast<long long>(source.minutesToFull))},
      // As on a Mac, more than any program asks for: a key that is no text, a value that is
      // none of the kinds that are read, and a number that no double holds.
      {newInteger(7), newString("sete")},
      {@"Battery Provides Details", standin::newArray({})},
      {@"Power Source ID", newInteger((1LL << 53) + 1)},
  };
  if (source.current) {
    entries.emplace_back(@"Current Capacity", newInteger(static_cast<long long>(*source.current)));
  }
  if (source.maximum) {
    entries.emplace_back(@"Max Capacity", newInteger(static_cast<long long>(*source.maximum)));
  }
  return standin::newDictionary(entries);
}

}  // namespace

extern "C" {

CFTypeRef IOPSCopyPowerSourcesInfo() {
  autoreleaseSomething();
  return standin::withMachine([](standin::Machine& machine) -> CFTypeRef {
    ++machine.calls.powerReadings;
    if (machine.areSourcesMissing) {
      return nullptr;
    }
    std::vector<id> descriptions;
    for (const standin::PowerSource& each : machine.powerSources) {
      descriptions.push_back(describe(each));
    }
    return (__bridge_retained CFTypeRef)standin::newArray(descriptions);
  });
}

CFArrayRef IOPSCopyPowerSourcesList(CFTypeRef blob) {
  return static_cast<CFArrayRef>(CFRetain(blob));
}

CFDictionaryRef IOPSGetPowerSourceDescription(CFTypeRef blob, CFTypeRef source) {
  for (id each : standin::itemsOf((__bridge NSArray*)blob)) {
    if ((__bridge CFTypeRef)each == source) {
      return static_cast<CFDictionaryRef>(source);
    }
  }
  standin::fault("a power source's description is asked of another blob than its own");
}

CFDictionaryRef IOPSCopyExternalPowerAdapterDetails() {
  autoreleaseSomething();
  return standin::withMachine([](standin::Machine& machine) -> CFDictionaryRef {
    if (!machine.adapterWatts) {
      return nullptr;
    }
    return (__bridge_retained CFDictionaryRef)standin::newDictionary(
        {{@"Watts", standin::newInteger(static_cast<long long>(*machine.adapterWatts))}});
  });
}

CFRunLoopSourceRef IOPSNotificationCreateRunLoopSource(IOPowerSourceCallbackType callback,
                                                       void* context) {
  StandInRunLoopSource* source = [[StandInRunLoopSource alloc] init];
  source->perform_ = callback;
  source->context_ = context;
  notification = source;
  return (__bridge_retained CFRunLoopSourceRef)source;
}

}  // extern "C"

namespace standin {

bool announcePowerChange() {
  StandInRunLoopSource* source = notification;
  return source != nil && MainRunLoop::signal((__bridge void*)source);
}

}  // namespace standin
