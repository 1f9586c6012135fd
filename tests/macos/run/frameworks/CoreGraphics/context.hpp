// SPDX-License-Identifier: MIT
#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#include "frameworks/CoreGraphics/glyphs.hpp"

/// A bitmap context of alpha alone, in memory that its maker owns.
@interface StandInContext : NSObject {
 @public
  standin::Mask mask_;
  double scale_;
}
@end
