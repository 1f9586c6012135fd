// SPDX-License-Identifier: MIT
//
// NSArray, NSDictionary, NSNumber and NSError. Played: they hold what the stand-ins put in,
// in its order, and do not change; a boxed truth value says what was boxed.
#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"

@interface StandInArray : NSArray {
 @public
  std::vector<id> items_;
}
@end

@interface StandInDictionary : NSDictionary {
 @public
  standin::Entries entries_;
}
@end

@implementation NSArray

- (NSUInteger)count {
  return standin::itemsOf(self).size();
}

- (id)firstObject {
  const std::vector<id>& items = standin::itemsOf(self);
  return items.empty() ? nil : items.front();
}

// All items at once.
- (NSUInteger)countByEnumeratingWithState:(NSFastEnumerationState*)state
                                  objects:(id __unsafe_unretained[])__unused buffer
                                    count:(NSUInteger)__unused length {
  static unsigned long neverChanges = 0;
  if (state->state != 0) {
    return 0;
  }
  const std::vector<id>& items = standin::itemsOf(self);
  state->state = 1;
  state->mutationsPtr = &neverChanges;
  state->itemsPtr = reinterpret_cast<id __unsafe_unretained*>(const_cast<id*>(items.data()));
  return items.size();
}

@end

@implementation StandInArray
@end

@implementation NSDictionary

+ (instancetype)dictionaryWithObjects:(const id _Nonnull[_Nullable])objects
                              forKeys:(const id<NSCopying> _Nonnull[_Nullable])keys
                                count:(NSUInteger)count {
  standin::Entries entries;
  for (NSUInteger i = 0; i < count; ++i) {
    entries.emplace_back(keys[i], objects[i]);
  }
  return standin::newDictionary(entries);
}

@end

@implementation StandInDictionary
@end

@implementation NSNumber
+ (NSNumber*)numberWithBool:(BOOL)value {
  return standin::newBoolean(value);
}
- (BOOL)boolValue {
  standin::fault("a number is asked for a truth value, which is not played");
}
@end

@implementation StandInNumber
@end

@implementation StandInBoolean
- (BOOL)boolValue {
  return value_;
}
@end

@implementation NSError {
 @public
  NSString* description_;
}

- (NSString*)localizedDescription {
  return description_;
}

@end

namespace standin {

NSNumber* newNumber(double value) {
  StandInNumber* number = [[StandInNumber alloc] init];
  number->value_ = value;
  return number;
}

NSNumber* newInteger(long long value) {
  StandInNumber* number = [[StandInNumber alloc] init];
  number->integer_ = value;
  number->isInteger_ = YES;
  return number;
}

NSNumber* newBoolean(bool value) {
  StandInBoolean* boolean = [[StandInBoolean alloc] init];
  boolean->value_ = value;
  return boolean;
}

NSArray* newArray(const std::vector<id>& items) {
  StandInArray* array = [[StandInArray alloc] init];
  array->items_ = items;
  return array;
}

NSDictionary* newDictionary(const Entries& entries) {
  StandInDictionary* dictionary = [[StandInDictionary alloc] init];
  dictionary->entries_ = entries;
  return dictionary;
}

NSError* newError(const std::string& description) {
  NSError* error = [[NSError alloc] init];
  error->description_ = newString(description);
  return error;
}

const std::vector<id>& itemsOf(NSArray* array) {
  return static_cast<StandInArray*>(array)->items_;
}

const Entries& entriesOf(NSDictionary* dictionary) {
  return static_cast<StandInDictionary*>(dictionary)->entries_;
}

id valueIn(NSDictionary* dictionary, const std::string& key) {
  for (const auto& [name, value] : entriesOf(dictionary)) {
    if ([name isKindOfClass:[NSString class]] && textOf(name) == key) {
      return value;
    }
  }
  return nil;
}

}  // namespace standin
