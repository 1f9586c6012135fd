// expect: Reference-counted object is used after it is released
#include <SystemConfiguration/SystemConfiguration.h>

void release(CFStringRef key) {
  CFPropertyListRef value = SCDynamicStoreCopyValue(nullptr, key);
  if (value != nullptr) {
    CFRelease(value);
    CFRelease(value);
  }
}
