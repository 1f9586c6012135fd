// SPDX-License-Identifier: MIT
#pragma once

#include <objc/NSObjCRuntime.h>
#include <Availability.h>
#include <objc/objc.h>

@class NSString;

@protocol NSObject
- (BOOL)respondsToSelector:(SEL)selector;
- (BOOL)isKindOfClass:(Class)wanted;
- (Class)class;
@end

__attribute__((objc_root_class))
@interface NSObject <NSObject> {
  Class isa;
}
+ (instancetype)alloc;
+ (instancetype)new;
+ (Class)class;
- (instancetype)init;
- (void)dealloc;
- (id)copyWithZone:(struct _NSZone*)zone;
@end
