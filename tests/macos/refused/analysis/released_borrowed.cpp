// expect: Incorrect decrement of the reference count of an object that is not owned
#include <IOKit/ps/IOPowerSources.h>

void describe(CFTypeRef blob, CFTypeRef source) {
  CFDictionaryRef description = IOPSGetPowerSourceDescription(blob, source);
  if (description != nullptr) {
    CFRelease(description);
  }
}
