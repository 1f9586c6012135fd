// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <string_view>

#include "model/utf8.hpp"

namespace vantora {

/// The string in UTF-8; empty for nil.
[[nodiscard]] inline std::string textOf(NSString* string) {
  const char* text = string.UTF8String;
  return text != nullptr ? text : "";
}

/// A string of that text; bytes that are no UTF-8 become U+FFFD.
[[nodiscard]] inline NSString* stringOf(std::string_view text) {
  const std::string repaired = repairedUtf8(text);
  NSString* string = [[NSString alloc] initWithBytes:repaired.data()
                                              length:repaired.size()
                                            encoding:NSUTF8StringEncoding];
  return string != nil ? string : @"";
}

}  // namespace vantora
