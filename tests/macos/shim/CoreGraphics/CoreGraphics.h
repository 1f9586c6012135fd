// SPDX-License-Identifier: MIT
//
// Our own declarations; see CoreFoundation/CoreFoundation.h beside.
#pragma once

#include <CoreFoundation/CoreFoundation.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma clang arc_cf_code_audited begin

typedef struct CF_BRIDGED_TYPE(id) CGContext* CGContextRef;
typedef struct CF_BRIDGED_TYPE(id) CGColorSpace* CGColorSpaceRef;

enum { kCGImageAlphaOnly = 7 };

CGContextRef CGBitmapContextCreate(void* data, size_t width, size_t height,
                                   size_t bitsPerComponent, size_t bytesPerRow,
                                   CGColorSpaceRef space,
                                   uint32_t bitmapInfo) CF_RETURNS_RETAINED;
void CGContextScaleCTM(CGContextRef context, CGFloat sx, CGFloat sy);
void CGContextSetShouldSmoothFonts(CGContextRef context, bool shouldSmoothFonts);

#pragma clang arc_cf_code_audited end
#ifdef __cplusplus
}
#endif
