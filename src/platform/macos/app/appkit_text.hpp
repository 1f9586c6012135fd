// SPDX-License-Identifier: MIT
//
// The core's texts in AppKit's terms; for Objective-C++ sources only.
#pragma once

#import <AppKit/AppKit.h>

#include "status/status_presentation.hpp"
#include "status/text_engine.hpp"

namespace vantora::AppKitText {

[[nodiscard]] NSFont* font(const Font& font);

/// The line in black, each run in its font.
[[nodiscard]] NSAttributedString* attributed(const StyledText& text);

/// Draws the line into the current graphics context, its baseline's left end there.
void draw(NSAttributedString* line, double x, double y);

/// The picture as a template image. It is drawn when the system asks for it, at the
/// scale of the display, from what `image` holds now.
[[nodiscard]] NSImage* templateImage(const StatusImage& image);

}  // namespace vantora::AppKitText
