// SPDX-License-Identifier: MIT
#include "platform/macos/base/core_foundation.hpp"

namespace vantora {
namespace {

template <typename Ref>
Ref castTo(CFTypeRef object, CFTypeID type) {
  return object != nullptr && CFGetTypeID(object) == type ? static_cast<Ref>(object) : nullptr;
}

}  // namespace

CFDictionaryRef asDictionary(CFTypeRef object) {
  return castTo<CFDictionaryRef>(object, CFDictionaryGetTypeID());
}

CFArrayRef asArray(CFTypeRef object) {
  return castTo<CFArrayRef>(object, CFArrayGetTypeID());
}

std::optional<std::string> asText(CFTypeRef object) {
  const auto string = castTo<CFStringRef>(object, CFStringGetTypeID());
  if (string == nullptr) {
    return std::nullopt;
  }
  const CFIndex size =
      CFStringGetMaximumSizeForEncoding(CFStringGetLength(string), kCFStringEncodingUTF8) + 1;
  std::string text(static_cast<std::size_t>(size), '\0');
  if (CFStringGetCString(string, text.data(), size, kCFStringEncodingUTF8) == 0) {
    return std::nullopt;
  }
  text.resize(text.find('\0'));
  return text;
}

std::optional<double> asNumber(CFTypeRef object) {
  const auto number = castTo<CFNumberRef>(object, CFNumberGetTypeID());
  double value = 0;
  // CFNumberGetValue says no when the conversion loses something, as that of an integer
  // above 2^53 would; no reading of ours is such a number.
  if (number == nullptr || CFNumberGetValue(number, kCFNumberFloat64Type, &value) == 0) {
    return std::nullopt;
  }
  return value;
}

std::optional<bool> asFlag(CFTypeRef object) {
  const auto boolean = castTo<CFBooleanRef>(object, CFBooleanGetTypeID());
  if (boolean == nullptr) {
    return std::nullopt;
  }
  return CFBooleanGetValue(boolean) != 0;
}

CFOwned<CFStringRef> makeString(std::string_view text) {
  return CFOwned<CFStringRef>(CFStringCreateWithBytes(
      kCFAllocatorDefault, reinterpret_cast<const UInt8*>(text.data()),
      static_cast<CFIndex>(text.size()), kCFStringEncodingUTF8, /*isExternalRepresentation=*/0));
}

}  // namespace vantora
