// SPDX-License-Identifier: MIT
#include "runtime_tests/sample_classes.hpp"

#include "frameworks/Foundation/values.hpp"

@implementation Animal
+ (NSString*)kind {
  return @"animal";
}
- (NSString*)sound {
  return @"…";
}
- (double)weightPlus:(double)first and:(double)second times:(int)factor {
  return (weight_ + first + second) * factor;
}
- (NSRect)frame {
  return NSMakeRect(1, 2, 3, 4);
}
@end

@implementation Dog
+ (NSString*)kind {
  return @"dog";
}
- (NSString*)sound {
  return [super sound].length == 1 ? @"au" : @"?";
}
@end

@implementation Animal (Feeding)
- (void)eat:(NSString*)meal {
  meals_.push_back(standin::textOf(meal));
}
@end

@implementation Ending
- (void)dealloc {
  ++*count_;
}
@end
