// SPDX-License-Identifier: MIT
//
// NSObject, the root of all classes.
#import <objc/NSObject.h>

#include "objc/class_table.hpp"
#include "objc/objects.hpp"

@implementation NSObject

+ (instancetype)alloc {
  return reinterpret_cast<id>(standin::allocate(reinterpret_cast<standin::Class*>(self)));
}

+ (instancetype)new {
  return [[self alloc] init];
}

+ (Class)class {
  return self;
}

- (instancetype)init {
  return self;
}

// What every other class's calls last; the memory goes elsewhere.
- (void)dealloc {
}

- (Class)class {
  return reinterpret_cast<Class>(standin::classOf(reinterpret_cast<standin::Object*>(self)));
}

- (BOOL)respondsToSelector:(SEL)selector {
  return standin::findMethod(standin::classOf(reinterpret_cast<standin::Object*>(self)),
                             reinterpret_cast<standin::Selector>(selector)) != nullptr;
}

- (BOOL)isKindOfClass:(Class)wanted {
  return standin::isKindOf(reinterpret_cast<standin::Object*>(self),
                           reinterpret_cast<standin::Class*>(wanted));
}

// Objects that never change are their own copies; none of ours changes after it is copied.
// By its name the method returns a reference that the caller owns.
- (id)copyWithZone:(struct _NSZone*)__unused zone {
  return reinterpret_cast<id>(standin::retain(reinterpret_cast<standin::Object*>(self)));
}

@end
