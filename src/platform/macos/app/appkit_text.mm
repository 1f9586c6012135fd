// SPDX-License-Identifier: MIT
#include "platform/macos/app/appkit_text.hpp"

#include <utility>
#include <vector>

#include "platform/macos/base/foundation_text.hpp"

namespace vantora::AppKitText {

NSFont* font(const Font& font) {
  switch (font.typeface) {
    case Typeface::system:
      return [NSFont systemFontOfSize:font.pointSize weight:NSFontWeightMedium];
    case Typeface::monospaced:
      return [NSFont monospacedSystemFontOfSize:font.pointSize weight:NSFontWeightMedium];
    case Typeface::tabularDigits:
      break;
  }
  return [NSFont monospacedDigitSystemFontOfSize:font.pointSize weight:NSFontWeightMedium];
}

NSAttributedString* attributed(const StyledText& text) {
  NSMutableAttributedString* line = [[NSMutableAttributedString alloc] initWithString:@""
                                                                           attributes:nil];
  for (const TextRun& run : text) {
    NSDictionary<NSAttributedStringKey, ::id>* attributes = @{
      NSFontAttributeName : font(run.font),
      NSForegroundColorAttributeName : NSColor.blackColor
    };
    [line appendAttributedString:[[NSAttributedString alloc] initWithString:stringOf(run.text)
                                                                 attributes:attributes]];
  }
  return line;
}

void draw(NSAttributedString* line, double x, double y) {
  // Without NSStringDrawingUsesLineFragmentOrigin the rectangle's origin is the
  // baseline's. A point more than measured, so that rounding never cuts a glyph.
  const NSSize size = line.size;
  [line drawWithRect:NSMakeRect(x, y, size.width + 1, size.height)
             options:NSStringDrawingOptions {}
             context:nil];
}

NSImage* templateImage(const StatusImage& image) {
  std::vector<std::pair<NSPoint, NSAttributedString*>> lines;
  lines.reserve(image.texts.size());
  for (const PlacedText& placed : image.texts) {
    lines.emplace_back(NSMakePoint(placed.x, placed.y), attributed(placed.text));
  }
  NSImage* picture = [NSImage imageWithSize:NSMakeSize(image.width, image.height)
                                    flipped:NO
                             drawingHandler:^BOOL(NSRect) {
                               for (const auto& [origin, line] : lines) {
                                 draw(line, origin.x, origin.y);
                               }
                               return YES;
                             }];
  [picture setTemplate:YES];
  return picture;
}

}  // namespace vantora::AppKitText
