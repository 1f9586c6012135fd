// expect: Potential leak of an object
// ARC does not own objects of Core Foundation.
#import <AppKit/AppKit.h>

void draw(void* pixels) {
  CGContextRef context = CGBitmapContextCreate(pixels, 1, 1, 8, 1, nullptr, kCGImageAlphaOnly);
  CGContextScaleCTM(context, 2, 2);
}
