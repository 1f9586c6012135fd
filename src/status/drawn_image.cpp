// SPDX-License-Identifier: MIT
#include "status/drawn_image.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace vantora {

const AlphaBitmap& DrawnImage::draw(const StatusImage& image, const ImageFrame& frame,
                                    TextEngine& engine, double scale) {
  const bool isSameCanvas =
      frame == frame_ && scale == scale_ && lines_.size() == image.texts.size();
  if (isSameCanvas) {
    findDue(image.texts);
    for (const Line& line : lines_) {
      if (line.isDue) {
        erase(line.ink);
      }
    }
  } else {
    frame_ = frame;
    scale_ = scale;
    bitmap_ = rasterise({}, frame, engine, scale);
    lines_.resize(image.texts.size());
  }
  for (std::size_t index = 0; index < lines_.size(); ++index) {
    Line& line = lines_[index];
    if (!isSameCanvas || line.isDue) {
      line.text = image.texts[index];
      line.isDue = true;
    }
  }
  if (!bitmap_.pixels.empty()) {
    drawDue(engine);
    if (meetsKept()) {
      drawAll(engine);
    }
  }
  return bitmap_;
}

// A line's ink is erased by whole columns, and that of the lines that have some in them too.
void DrawnImage::findDue(const std::vector<PlacedText>& texts) {
  for (std::size_t index = 0; index < lines_.size(); ++index) {
    lines_[index].isDue = !lines_[index].ink.isFinal || lines_[index].text != texts[index];
  }
  bool hasFound = true;
  while (hasFound) {
    hasFound = false;
    for (Line& line : lines_) {
      if (!line.isDue && std::any_of(lines_.begin(), lines_.end(), [&](const Line& other) {
            return other.isDue && other.ink.meets(line.ink);
          })) {
        line.isDue = true;
        hasFound = true;
      }
    }
  }
}

void DrawnImage::erase(const InkSpan& columns) {
  const auto width = static_cast<std::ptrdiff_t>(bitmap_.width);
  for (auto row = bitmap_.pixels.begin(); row != bitmap_.pixels.end(); row += width) {
    std::fill(row + columns.begin, row + columns.end, std::uint8_t{0});
  }
}

void DrawnImage::drawDue(TextEngine& engine) {
  for (Line& line : lines_) {
    if (line.isDue) {
      line.ink = engine.draw(bitmap_, scale_, line.text.x + frame_.left,
                             line.text.y + frame_.bottom, line.text.text);
    }
  }
}

// Where three inks share a pixel it matters which was there first.
bool DrawnImage::meetsKept() const {
  return std::any_of(lines_.begin(), lines_.end(), [this](const Line& line) {
    return line.isDue && std::any_of(lines_.begin(), lines_.end(), [&](const Line& other) {
             return !other.isDue && other.ink.meets(line.ink);
           });
  });
}

void DrawnImage::drawAll(TextEngine& engine) {
  std::fill(bitmap_.pixels.begin(), bitmap_.pixels.end(), std::uint8_t{0});
  for (Line& line : lines_) {
    line.isDue = true;
  }
  drawDue(engine);
}

}  // namespace vantora
