// SPDX-License-Identifier: MIT
//
// Core Foundation's view of Foundation's values. Played: the owner of what a Create or Copy
// function returns releases it; a conversion that loses something says so; releasing nothing
// is a fault.
#import <CoreFoundation/CoreFoundation.h>

#include <cstring>

#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"
#include "objc/objects.hpp"

using standin::entriesOf;
using standin::itemsOf;
using standin::textOf;

namespace {

enum TypeID : CFTypeID {
  arrayType = 18,
  booleanType = 21,
  dictionaryType = 17,
  numberType = 22,
  stringType = 7,
  otherType = 1
};

standin::Object* object(CFTypeRef reference) {
  return reinterpret_cast<standin::Object*>(const_cast<void*>(reference));
}

template <typename Wanted>
Wanted* checked(const void* reference, Class type, const char* call) {
  id found = (__bridge id)reference;
  if (![found isKindOfClass:type]) {
    standin::fault("%s is called with something else", call);
  }
  return found;
}

}  // namespace

extern "C" {

const CFAllocatorRef kCFAllocatorDefault = nullptr;
const CFErrorDomain kCFErrorDomainPOSIX = CFSTR("NSPOSIXErrorDomain");

CFTypeRef CFRetain(CFTypeRef reference) {
  return standin::retain(object(reference));
}

void CFRelease(CFTypeRef reference) {
  if (reference == nullptr) {
    standin::fault("CFRelease is called with nothing");
  }
  standin::release(object(reference));
}

CFTypeID CFGetTypeID(CFTypeRef reference) {
  id found = (__bridge id)reference;
  return [found isKindOfClass:[NSString class]]         ? stringType
         : [found isKindOfClass:[StandInBoolean class]] ? booleanType
         : [found isKindOfClass:[NSNumber class]]       ? numberType
         : [found isKindOfClass:[NSDictionary class]]   ? dictionaryType
         : [found isKindOfClass:[NSArray class]]        ? arrayType
                                                        : otherType;
}
CFTypeID CFArrayGetTypeID() {
  return arrayType;
}
CFTypeID CFBooleanGetTypeID() {
  return booleanType;
}
CFTypeID CFDictionaryGetTypeID() {
  return dictionaryType;
}
CFTypeID CFNumberGetTypeID() {
  return numberType;
}
CFTypeID CFStringGetTypeID() {
  return stringType;
}

CFIndex CFArrayGetCount(CFArrayRef array) {
  return static_cast<CFIndex>(itemsOf(checked<NSArray>(array, [NSArray class], __func__)).size());
}
const void* CFArrayGetValueAtIndex(CFArrayRef array, CFIndex index) {
  const auto& items = itemsOf(checked<NSArray>(array, [NSArray class], __func__));
  if (index < 0 || static_cast<std::size_t>(index) >= items.size()) {
    standin::fault("CFArrayGetValueAtIndex is called with %ld of %zu", index, items.size());
  }
  return (__bridge void*)items[static_cast<std::size_t>(index)];
}

Boolean CFBooleanGetValue(CFBooleanRef boolean) {
  return checked<StandInBoolean>(boolean, [StandInBoolean class], __func__)->value_;
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) {
  return static_cast<CFIndex>(
      entriesOf(checked<NSDictionary>(dictionary, [NSDictionary class], __func__)).size());
}
const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  return (__bridge void*)standin::valueIn(
      checked<NSDictionary>(dictionary, [NSDictionary class], __func__),
      textOf((__bridge NSString*)key));
}
void CFDictionaryGetKeysAndValues(CFDictionaryRef dictionary, const void** keys,
                                  const void** values) {
  for (const auto& [key, value] :
       entriesOf(checked<NSDictionary>(dictionary, [NSDictionary class], __func__))) {
    *keys++ = (__bridge void*)key;
    *values++ = (__bridge void*)value;
  }
}

// A 64-bit integer fits into a double as long as it has at most 53 bits.
Boolean CFNumberGetValue(CFNumberRef reference, CFNumberType type, void* value) {
  StandInNumber* number = checked<StandInNumber>(reference, [StandInNumber class], __func__);
  if (type != kCFNumberFloat64Type) {
    standin::fault("CFNumberGetValue is called for type %ld", static_cast<long>(type));
  }
  const double converted =
      number->isInteger_ ? static_cast<double>(number->integer_) : number->value_;
  std::memcpy(value, &converted, sizeof converted);
  return !number->isInteger_ || static_cast<long long>(converted) == number->integer_;
}

CFStringRef CFStringCreateWithBytes(CFAllocatorRef, const UInt8* bytes, CFIndex count,
                                    CFStringEncoding encoding, Boolean) {
  if (encoding != kCFStringEncodingUTF8) {
    standin::fault("CFStringCreateWithBytes is called for another encoding than UTF-8");
  }
  NSString* string = [[NSString alloc] initWithBytes:bytes
                                              length:static_cast<NSUInteger>(count)
                                            encoding:NSUTF8StringEncoding];
  return (__bridge_retained CFStringRef)string;
}
CFIndex CFStringGetLength(CFStringRef string) {
  return static_cast<CFIndex>(checked<NSString>(string, [NSString class], __func__).length);
}
CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding) {
  return length * 3;
}
Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex size, CFStringEncoding) {
  const std::string text = textOf(checked<NSString>(string, [NSString class], __func__));
  if (text.size() >= static_cast<std::size_t>(size)) {
    return 0;
  }
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return 1;
}

CFErrorRef CFErrorCreate(CFAllocatorRef, CFErrorDomain domain, CFIndex code, CFDictionaryRef) {
  if (textOf((__bridge NSString*)domain) != textOf((__bridge NSString*)kCFErrorDomainPOSIX)) {
    standin::fault("CFErrorCreate is called for another domain than POSIX's");
  }
  return (__bridge_retained CFErrorRef)standin::newError(
      "A operação não pôde ser concluída. " + std::string(std::strerror(static_cast<int>(code))));
}
CFStringRef CFErrorCopyDescription(CFErrorRef error) {
  return (__bridge_retained CFStringRef)((__bridge NSError*)error).localizedDescription;
}

}  // extern "C"
