// SPDX-License-Identifier: MIT
//
// Graphics contexts and images. Played: saved states are restored in order; an image is drawn
// when a display asks for it, by the handler that it was made with, at that display's scale.
#include "frameworks/AppKit/graphics.hpp"

#include <cmath>

#include "objc/fault.hpp"

namespace {

std::vector<NSGraphicsContext*> saved;
NSGraphicsContext* current = nil;

}  // namespace

@implementation NSGraphicsContext {
 @public
  StandInContext* context_;
}

+ (NSGraphicsContext*)graphicsContextWithCGContext:(CGContextRef)context flipped:(BOOL)flipped {
  if (flipped) {
    standin::fault("flipped contexts are not played");
  }
  NSGraphicsContext* made = [[NSGraphicsContext alloc] init];
  made->context_ = (__bridge StandInContext*)context;
  return made;
}

+ (NSGraphicsContext*)currentContext {
  return current;
}

+ (void)setCurrentContext:(NSGraphicsContext*)context {
  current = context;
}

+ (void)saveGraphicsState {
  saved.push_back(current);
}

+ (void)restoreGraphicsState {
  if (saved.empty()) {
    standin::fault("a graphics state is restored that was not saved");
  }
  current = saved.back();
  saved.pop_back();
}

@end

@implementation NSImage {
 @public
  NSSize size_;
  BOOL isTemplate_;
  BOOL (^handler_)(NSRect);
}

+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)flipped
           drawingHandler:(BOOL (^)(NSRect))drawingHandler {
  if (flipped) {
    standin::fault("flipped images are not played");
  }
  NSImage* image = [[NSImage alloc] init];
  image->size_ = size;
  image->handler_ = drawingHandler;
  return image;
}

- (void)setTemplate:(BOOL)isTemplate {
  isTemplate_ = isTemplate;
}

@end

namespace standin {

StandInContext* currentContext() {
  if (current == nil) {
    fault("something is drawn without a current graphics context");
  }
  return current->context_;
}

Drawing draw(NSImage* image, double scale) {
  Drawing drawing;
  drawing.width = static_cast<std::size_t>(std::ceil(image->size_.width * scale));
  drawing.height = static_cast<std::size_t>(std::ceil(image->size_.height * scale));
  drawing.pixels.resize(drawing.width * drawing.height);
  @autoreleasepool {
    CGContextRef context =
        CGBitmapContextCreate(drawing.pixels.data(), drawing.width, drawing.height, 8,
                              drawing.width, nullptr, kCGImageAlphaOnly);
    CGContextScaleCTM(context, scale, scale);
    [NSGraphicsContext saveGraphicsState];
    NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context
                                                                               flipped:NO];
    if (!image->handler_(NSMakeRect(0, 0, image->size_.width, image->size_.height))) {
      fault("an image's handler says that it drew nothing");
    }
    [NSGraphicsContext restoreGraphicsState];
    CFRelease(context);
  }
  return drawing;
}

NSSize sizeOf(NSImage* image) {
  return image->size_;
}
bool isTemplate(NSImage* image) {
  return image->isTemplate_;
}

}  // namespace standin
