// SPDX-License-Identifier: MIT
//
// Foundation's values as the stand-ins make them and look into them. Core Foundation's are
// the same objects.
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <utility>
#include <vector>

#define STAND_IN_RETAINED __attribute__((ns_returns_retained))

@interface StandInNumber : NSNumber {
 @public
  double value_;
  long long integer_;
  BOOL isInteger_;
}
@end

@interface StandInBoolean : NSNumber {
 @public
  BOOL value_;
}
@end

namespace standin {

/// UTF-8, with what is no text of it left out.
[[nodiscard]] std::string textOf(NSString* string);

/// Each gives the caller a reference and needs no autorelease pool.
STAND_IN_RETAINED NSString* newString(const std::string& text);
STAND_IN_RETAINED NSNumber* newNumber(double value);
STAND_IN_RETAINED NSNumber* newInteger(long long value);
STAND_IN_RETAINED NSNumber* newBoolean(bool value);
STAND_IN_RETAINED NSArray* newArray(const std::vector<id>& items);
using Entries = std::vector<std::pair<id, id>>;
STAND_IN_RETAINED NSDictionary* newDictionary(const Entries& entries);
STAND_IN_RETAINED NSError* newError(const std::string& description);

[[nodiscard]] const std::vector<id>& itemsOf(NSArray* array);
[[nodiscard]] const Entries& entriesOf(NSDictionary* dictionary);
/// The value under a text; nil when there is none.
[[nodiscard]] id valueIn(NSDictionary* dictionary, const std::string& key);

}  // namespace standin
