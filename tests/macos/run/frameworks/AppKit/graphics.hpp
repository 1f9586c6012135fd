// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

#include <cstdint>
#include <vector>

#include "frameworks/CoreGraphics/context.hpp"

namespace standin {

/// What is drawn into at the moment; a fault when nothing is.
[[nodiscard]] StandInContext* currentContext();

/// An image as the system draws it when a display of that scale asks for it.
struct Drawing {
  std::size_t width = 0;
  std::size_t height = 0;
  std::vector<std::uint8_t> pixels;
};
[[nodiscard]] Drawing draw(NSImage* image, double scale);
[[nodiscard]] NSSize sizeOf(NSImage* image);
[[nodiscard]] bool isTemplate(NSImage* image);

}  // namespace standin
