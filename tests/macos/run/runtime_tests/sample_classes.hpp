// SPDX-License-Identifier: MIT
//
// Classes of the tests' own, as the programs' are made.
#pragma once

#import <Foundation/Foundation.h>

#include <string>
#include <vector>

@interface Animal : NSObject {
 @public
  std::vector<std::string> meals_;
  double weight_;
}
@property(strong) Animal* friendOfIts;
@property(weak) Animal* parent;
@property(copy) NSString* name;
+ (NSString*)kind;
- (NSString*)sound;
- (double)weightPlus:(double)first and:(double)second times:(int)factor;
- (NSRect)frame;
@end

@interface Dog : Animal {
 @public
  int tricks_;
}
@end

@interface Animal (Feeding)
- (void)eat:(NSString*)meal;
@end

/// Counts the ends of what is given to it.
@interface Ending : NSObject {
 @public
  int* count_;
}
@end
