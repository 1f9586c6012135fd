// SPDX-License-Identifier: MIT
#include "platform/macos/app/appkit_text_engine.hpp"

#include "platform/macos/app/appkit_text.hpp"
#include "platform/macos/base/core_foundation.hpp"

namespace vantora {

double AppKitTextEngine::width(const StyledText& text) {
  return AppKitText::attributed(text).size.width;
}

LineMetrics AppKitTextEngine::metrics(const Font& font) {
  NSFont* resolved = AppKitText::font(font);
  // AppKit's descender is the lowest y, thus negative.
  return {.ascent = resolved.ascender, .descent = -resolved.descender};
}

InkSpan AppKitTextEngine::draw(AlphaBitmap& target, double scale, double x, double y,
                               const StyledText& text) {
  const auto width = static_cast<std::size_t>(target.width);
  const auto height = static_cast<std::size_t>(target.height);
  if (width == 0 || height == 0) {
    return {};
  }
  // A bitmap context's first row is its top one, its origin the lower left corner.
  const CFOwned<CGContextRef> context(CGBitmapContextCreate(target.pixels.data(), width, height, 8,
                                                            width, nullptr, kCGImageAlphaOnly));
  if (!context) {
    return {.isFinal = false};
  }
  CGContextScaleCTM(context.get(), scale, scale);
  CGContextSetShouldSmoothFonts(context.get(), false);
  [NSGraphicsContext saveGraphicsState];
  NSGraphicsContext.currentContext = [NSGraphicsContext graphicsContextWithCGContext:context.get()
                                                                             flipped:NO];
  AppKitText::draw(AppKitText::attributed(text), x, y);
  [NSGraphicsContext restoreGraphicsState];
  return {.begin = 0, .end = target.width};
}

}  // namespace vantora
