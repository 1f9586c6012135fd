// SPDX-License-Identifier: MIT
#include <CoreFoundation/CoreFoundation.h>

#include <cerrno>

#include "settings/error_text.hpp"

namespace vantora {

std::string systemErrorText(int errorNumber) {
  const int savedErrno = errno;
  std::string text;
  if (const CFErrorRef error =
          CFErrorCreate(kCFAllocatorDefault, kCFErrorDomainPOSIX, errorNumber, nullptr)) {
    if (const CFStringRef description = CFErrorCopyDescription(error)) {
      char buffer[512];
      if (CFStringGetCString(description, buffer, sizeof buffer, kCFStringEncodingUTF8) != 0) {
        text = buffer;
      }
      CFRelease(description);
    }
    CFRelease(error);
  }
  errno = savedErrno;
  return text;
}

}  // namespace vantora
