// SPDX-License-Identifier: MIT
//
// Core Graphics' bitmap contexts. Played: those of alpha alone, 8 bits a pixel and no colour
// space, over memory that is the caller's.
#include "frameworks/CoreGraphics/context.hpp"

#include "objc/fault.hpp"

@implementation StandInContext
@end

extern "C" {

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height, size_t bits,
                                   size_t rowBytes, CGColorSpaceRef space, uint32_t information) {
  if (bits != 8 || space != nullptr || information != kCGImageAlphaOnly || rowBytes < width) {
    standin::fault("a bitmap context is asked for that Core Graphics does not support");
  }
  if (width == 0 || height == 0) {
    return nullptr;
  }
  StandInContext* context = [[StandInContext alloc] init];
  context->mask_ = {static_cast<std::uint8_t*>(data), width, height, rowBytes};
  context->scale_ = 1;
  return (__bridge_retained CGContextRef)context;
}

void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy) {
  if (sx != sy) {
    standin::fault("a context is scaled unevenly");
  }
  ((__bridge StandInContext*)context)->scale_ *= sx;
}

void CGContextSetShouldSmoothFonts(CGContextRef, bool) {}

}  // extern "C"
