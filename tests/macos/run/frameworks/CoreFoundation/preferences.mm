// SPDX-License-Identifier: MIT
//
// CFPreferences. Played: a value that is set is the process's at once and the disk's when
// synchronizing succeeds; a failed synchronizing leaves the process with the new one; a null
// value removes the key; the caller owns what it copies.
#import <CoreFoundation/CoreFoundation.h>

#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"

namespace {

std::string place(CFStringRef application, CFStringRef key) {
  return standin::textOf((__bridge NSString*)application) + "." +
         standin::textOf((__bridge NSString*)key);
}

}  // namespace

extern "C" {

CFPropertyListRef CFPreferencesCopyAppValue(CFStringRef key, CFStringRef application) {
  return standin::withMachine([&](standin::Machine& machine) -> CFPropertyListRef {
    const auto found = machine.preferences.find(place(application, key));
    if (found == machine.preferences.end()) {
      return nullptr;
    }
    return (__bridge_retained CFPropertyListRef)standin::newString(found->second);
  });
}

void CFPreferencesSetAppValue(CFStringRef key, CFPropertyListRef value, CFStringRef application) {
  standin::withMachine([&](standin::Machine& machine) {
    if (value == nullptr) {
      machine.preferences.erase(place(application, key));
    } else {
      machine.preferences[place(application, key)] = standin::textOf((__bridge NSString*)value);
    }
  });
}

Boolean CFPreferencesAppSynchronize(CFStringRef) {
  return standin::withMachine(
      [](standin::Machine& machine) -> Boolean { return !machine.arePreferencesRefused; });
}

}  // extern "C"
