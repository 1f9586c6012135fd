// SPDX-License-Identifier: MIT
//
// NSString: one class of made strings and one of the compiler's constants. Played: text that
// is no UTF-8 makes no string; the bytes of UTF8String live as long as the string here, where
// the system promises them for the pool's life.
#include <map>
#include <mutex>

#include "frameworks/Foundation/values.hpp"
#include "model/utf8.hpp"

@interface StandInString : NSString {
 @public
  std::string text_;
}
@end

@interface StandInConstantString : NSString
@end

@implementation NSString

// The class cluster: what is made is of a class behind.
+ (instancetype)alloc {
  return self == [NSString class] ? [StandInString alloc] : [super alloc];
}

- (instancetype)initWithBytes:(const void*)__unused bytes
                       length:(NSUInteger)__unused length
                     encoding:(NSStringEncoding)__unused encoding {
  return nil;
}

- (const char*)UTF8String {
  return nullptr;
}

// In UTF-16 units.
- (NSUInteger)length {
  NSUInteger units = 0;
  for (const char each : standin::textOf(self)) {
    const auto byte = static_cast<unsigned char>(each);
    units += (byte & 0xc0) == 0x80 ? 0 : byte >= 0xf0 ? 2 : 1;
  }
  return units;
}

- (NSString*)stringByStandardizingPath {
  std::string path = standin::textOf(self);
  while (path.size() > 1 && path.ends_with('/')) {
    path.pop_back();
  }
  return standin::newString(path);
}

@end

@implementation StandInString

- (instancetype)initWithBytes:(const void*)bytes
                       length:(NSUInteger)length
                     encoding:(NSStringEncoding)encoding {
  const std::string text(static_cast<const char*>(bytes), length);
  if (encoding != NSUTF8StringEncoding || vantora::repairedUtf8(text) != text) {
    return nil;
  }
  text_ = text;
  return self;
}

- (const char*)UTF8String {
  return text_.c_str();
}

@end

@implementation StandInConstantString {
  // As clang lays them out behind the isa.
  int flags_;
  const char* bytes_;
  long length_;
}

- (const char*)UTF8String {
  constexpr int isUtf16 = 0x10;
  if ((flags_ & isUtf16) == 0) {
    return bytes_;
  }
  static std::mutex mutex;
  static std::map<const void*, std::string> converted;
  const std::lock_guard lock(mutex);
  std::string& text = converted[bytes_];
  if (text.empty()) {
    const auto* units = reinterpret_cast<const char16_t*>(bytes_);
    for (long i = 0; i < length_; ++i) {
      const unsigned unit = units[i];
      if (unit < 0x80) {
        text += static_cast<char>(unit);
      } else if (unit < 0x800) {
        text += static_cast<char>(0xc0 | unit >> 6);
        text += static_cast<char>(0x80 | (unit & 0x3f));
      } else {
        text += static_cast<char>(0xe0 | unit >> 12);
        text += static_cast<char>(0x80 | (unit >> 6 & 0x3f));
        text += static_cast<char>(0x80 | (unit & 0x3f));
      }
    }
  }
  return text.c_str();
}

@end

namespace standin {

std::string textOf(NSString* string) {
  const char* text = string.UTF8String;
  return text != nullptr ? text : "";
}

NSString* newString(const std::string& text) {
  return [[NSString alloc] initWithBytes:text.data()
                                  length:text.size()
                                encoding:NSUTF8StringEncoding];
}

}  // namespace standin
