// SPDX-License-Identifier: MIT
//
// Fonts and attributed strings. Played: a string's size is its runs' widths and the tallest
// line; without NSStringDrawingUsesLineFragmentOrigin a rectangle's origin is the baseline's;
// drawing needs a current graphics context, and goes no farther than the rectangle is wide.
#import <AppKit/AppKit.h>

#include <algorithm>
#include <vector>

#include "frameworks/AppKit/graphics.hpp"
#include "frameworks/CoreGraphics/glyphs.hpp"
#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"

extern "C" {
const NSFontWeight NSFontWeightMedium = 0.23;
NSAttributedStringKey const NSFontAttributeName = @"NSFont";
NSAttributedStringKey const NSForegroundColorAttributeName = @"NSColor";
}

@implementation NSFont {
 @public
  standin::Typeface face_;
}

+ (NSFont*)standInFontOfSize:(CGFloat)size isMonospaced:(BOOL)isMonospaced {
  NSFont* font = [[NSFont alloc] init];
  font->face_ = {static_cast<bool>(isMonospaced), size};
  return font;
}
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)__unused weight {
  return [self standInFontOfSize:size isMonospaced:NO];
}
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)__unused weight {
  return [self standInFontOfSize:size isMonospaced:NO];
}
+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)__unused weight {
  return [self standInFontOfSize:size isMonospaced:YES];
}
- (CGFloat)ascender {
  return standin::ascenderOf(face_);
}
- (CGFloat)descender {
  return standin::descenderOf(face_);
}

@end

@implementation NSColor

+ (NSColor*)blackColor {
  static NSColor* const black = [[NSColor alloc] init];
  return black;
}

@end

namespace {

struct Run {
  std::string text;
  standin::Typeface face;
};

}  // namespace

@implementation NSAttributedString {
 @public
  std::vector<Run> runs_;
}

- (instancetype)initWithString:(NSString*)string
                    attributes:(NSDictionary<NSAttributedStringKey, id>*)attributes {
  self = [super init];
  if (self != nil && string.length > 0) {
    NSFont* font = standin::valueIn(attributes, "NSFont");
    if (font == nil || standin::valueIn(attributes, "NSColor") != NSColor.blackColor) {
      standin::fault("a text has no font or is not black, as a template's has to be");
    }
    runs_.push_back({standin::textOf(string), font->face_});
  }
  return self;
}

- (NSSize)size {
  NSSize size{};
  for (const Run& each : runs_) {
    size.width += standin::widthOf(each.text, each.face);
    size.height =
        std::max(size.height, standin::ascenderOf(each.face) - standin::descenderOf(each.face));
  }
  return size;
}

- (void)drawWithRect:(NSRect)rect
             options:(NSStringDrawingOptions)options
             context:(NSStringDrawingContext*)__unused context {
  if ((options & NSStringDrawingUsesLineFragmentOrigin) != 0) {
    standin::fault("a text is drawn from its line's top, which is not played");
  }
  if (rect.size.width < self.size.width) {
    standin::fault("a text is cut: its rectangle is narrower than it is");
  }
  StandInContext* target = standin::currentContext();
  double x = rect.origin.x;
  for (const Run& each : runs_) {
    standin::drawText(target->mask_, target->scale_, x, rect.origin.y, each.text, each.face);
    x += standin::widthOf(each.text, each.face);
  }
}

@end

@implementation NSMutableAttributedString

- (void)appendAttributedString:(NSAttributedString*)string {
  runs_.insert(runs_.end(), string->runs_.begin(), string->runs_.end());
}

@end
