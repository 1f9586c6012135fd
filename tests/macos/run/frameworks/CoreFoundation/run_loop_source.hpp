// SPDX-License-Identifier: MIT
#pragma once

#import <Foundation/Foundation.h>

/// A source that a framework makes and signals. Its memory is its identity in the run loop.
@interface StandInRunLoopSource : NSObject {
 @public
  void (*perform_)(void* context);
  void* context_;
}
@end
