// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

namespace vantora {

/// The string in UTF-8; empty for nil.
[[nodiscard]] inline std::string textOf(NSString* string) {
  const char* text = string.UTF8String;
  return text != nullptr ? text : "";
}

/// A string of that UTF-8 text; empty when it is none, which no text of ours is.
[[nodiscard]] inline NSString* stringOf(std::string_view text) {
  NSString* string =
      [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
  return string != nil ? string : @"";
}

}  // namespace vantora
