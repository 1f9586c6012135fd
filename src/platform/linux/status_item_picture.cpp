// SPDX-License-Identifier: MIT
#include "platform/linux/status_item_picture.hpp"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>

namespace vantora {
namespace {

constexpr std::string_view modulePartition = " · ";
constexpr std::string_view noReading = "—";

std::string plainText(const StyledText& text) {
  std::string plain;
  for (const TextRun& run : text) {
    plain += run.text;
  }
  return plain;
}

bool tells(const StyledText& text) {
  const std::string plain = plainText(text);
  return !plain.empty() && plain != noReading;
}

double largestPointSize(const StyledText& text) {
  double largest = 0;
  for (const TextRun& run : text) {
    largest = std::max(largest, run.font.pointSize);
  }
  return largest;
}

StyledText scaled(StyledText text, double factor) {
  for (TextRun& run : text) {
    run.font.pointSize *= factor;
  }
  return text;
}

// Puts the line into the middle of the row that begins at `bottom`.
void placeLine(StatusImage& image, const StyledText& text, double bottom, double rowHeight,
               double margin, TextEngine& engine) {
  const double present = largestPointSize(text);
  const double width = engine.width(text);
  if (present <= 0 || width <= 0) {
    return;
  }
  // Digits are about 0.72 of the point size high, and no descender shares their row.
  constexpr double digitHeight = 0.72;
  constexpr double rowFill = 0.82;
  const double byHeight = rowHeight * rowFill / digitHeight / present;
  const double byWidth = (image.width - 2 * margin) / width;
  const double factor = std::min(byHeight, byWidth);
  StyledText fitted = scaled(text, factor);
  const double x = (image.width - engine.width(fitted)) / 2;
  const double y = bottom + (rowHeight - present * factor * digitHeight) / 2;
  image.texts.push_back({.x = x, .y = y, .text = std::move(fitted)});
}

// How much of the pixel a rectangle with rounded corners covers, 0 to 1.
double plateCoverage(int x, int y, int width, int height, double radius) {
  const double centreX = x + 0.5;
  const double centreY = y + 0.5;
  const double dx = std::max({radius - centreX, centreX - (width - radius), 0.0});
  const double dy = std::max({radius - centreY, centreY - (height - radius), 0.0});
  if (dx == 0 || dy == 0) {
    return 1;
  }
  return std::clamp(radius - std::hypot(dx, dy) + 0.5, 0.0, 1.0);
}

struct Colour {
  std::uint8_t alpha;
  std::uint8_t grey;
};

// Neutral greys that stand on panels of either kind without being harsh.
constexpr std::uint8_t lightInk = 0xF5;
constexpr std::uint8_t darkInk = 0x1E;
constexpr std::uint8_t plateGrey = 0x26;
constexpr double plateOpacity = 0.92;

// Ink over the plate, both without premultiplied colours.
Colour overPlate(std::uint8_t ink, double plateAlpha) {
  const double inkAlpha = ink / 255.0;
  const double alpha = inkAlpha + plateAlpha * (1 - inkAlpha);
  if (alpha <= 0) {
    return {0, 0};
  }
  const double grey = (lightInk * inkAlpha + plateGrey * plateAlpha * (1 - inkAlpha)) / alpha;
  return {static_cast<std::uint8_t>(std::lround(alpha * 255)),
          static_cast<std::uint8_t>(std::lround(grey))};
}

void put(std::span<std::uint8_t> pixels, std::size_t index, Colour colour) {
  std::uint8_t* pixel = &pixels[index * 4];
  pixel[0] = colour.alpha;
  pixel[1] = colour.grey;
  pixel[2] = colour.grey;
  pixel[3] = colour.grey;
}

void tintOverPlate(const AlphaBitmap& bitmap, double radius, std::span<std::uint8_t> pixels) {
  // Away from the corners the plate is the same everywhere: a table does.
  std::array<Colour, 256> inside{};
  for (std::size_t ink = 0; ink < inside.size(); ++ink) {
    inside[ink] = overPlate(static_cast<std::uint8_t>(ink), plateOpacity);
  }
  const int reach = static_cast<int>(std::ceil(radius));
  std::size_t index = 0;
  for (int y = 0; y < bitmap.height; ++y) {
    const bool isCornerRow = y < reach || y >= bitmap.height - reach;
    for (int x = 0; x < bitmap.width; ++x, ++index) {
      const std::uint8_t ink = bitmap.pixels[index];
      if (isCornerRow && (x < reach || x >= bitmap.width - reach)) {
        const double coverage = plateCoverage(x, y, bitmap.width, bitmap.height, radius);
        put(pixels, index, overPlate(ink, plateOpacity * coverage));
      } else {
        put(pixels, index, inside[ink]);
      }
    }
  }
}

}  // namespace

std::vector<ModuleColumn> moduleColumns(const StatusImage& image, TextEngine& engine) {
  struct Line {
    const PlacedText* place;
    double end;
  };
  std::vector<Line> lines;
  lines.reserve(image.texts.size());
  for (const PlacedText& text : image.texts) {
    const double width = engine.width(text.text);
    if (width > 0) {
      lines.push_back({&text, text.x + width});
    }
  }
  std::sort(lines.begin(), lines.end(),
            [](const Line& a, const Line& b) { return a.place->x < b.place->x; });

  std::vector<ModuleColumn> columns;
  for (std::size_t index = 0; index < lines.size(); ++index) {
    const Line& line = lines[index];
    const Line* other = index + 1 < lines.size() ? &lines[index + 1] : nullptr;
    ModuleColumn column;
    if (other != nullptr && other->place->x < line.end && other->place->y != line.place->y) {
      const bool isHigher = line.place->y > other->place->y;
      column.top = isHigher ? line.place->text : other->place->text;
      column.bottom = isHigher ? other->place->text : line.place->text;
      ++index;
    } else if (line.place->y >= image.height * 0.45) {
      column.top = line.place->text;
    } else {
      column.bottom = line.place->text;
    }
    columns.push_back(std::move(column));
  }
  return columns;
}

std::string labelText(const std::vector<ModuleColumn>& columns) {
  std::string label;
  for (const ModuleColumn& column : columns) {
    if (!label.empty()) {
      label += modulePartition;
    }
    const std::string top = plainText(column.top);
    const std::string bottom = plainText(column.bottom);
    label += top;
    label += top.empty() || bottom.empty() ? "" : " ";
    label += bottom;
  }
  return label;
}

ModuleColumn squareModule(const std::vector<ModuleColumn>& columns) {
  const auto telling = std::find_if(columns.begin(), columns.end(), [](const ModuleColumn& column) {
    return tells(column.top) || tells(column.bottom);
  });
  if (telling != columns.end()) {
    return *telling;
  }
  return columns.empty() ? ModuleColumn{} : columns.front();
}

StatusImage squareImage(const ModuleColumn& column, double side, TextEngine& engine) {
  StatusImage image{.width = side, .height = side, .texts = {}};
  const double margin = std::max(1.0, side / 16);
  const double inner = side - 2 * margin;
  if (column.top.empty() || column.bottom.empty()) {
    placeLine(image, column.top.empty() ? column.bottom : column.top, margin, inner, margin,
              engine);
    return image;
  }
  placeLine(image, column.bottom, margin, inner / 2, margin, engine);
  placeLine(image, column.top, margin + inner / 2, inner / 2, margin, engine);
  return image;
}

StatusImage centredImage(StatusImage image, double width, double height) {
  // Whole points, so that the lines stay as crisp as they were laid out.
  const double right = std::floor((width - image.width) / 2);
  const double up = std::floor((height - image.height) / 2);
  for (PlacedText& text : image.texts) {
    text.x += right;
    text.y += up;
  }
  image.width = width;
  image.height = height;
  return image;
}

AlphaBitmap applicationMark(int side) {
  AlphaBitmap mark(side, side);
  const int margin = std::max(1, side / 8);
  const int inner = side - 2 * margin;
  const int gap = std::max(1, side / 10);
  const int bar = (inner - 2 * gap) / 3;
  constexpr std::array<double, 3> heights{0.45, 1.0, 0.7};
  for (int index = 0; index < 3; ++index) {
    const int left = margin + index * (bar + gap);
    const int height =
        static_cast<int>(std::lround(inner * heights[static_cast<std::size_t>(index)]));
    for (int y = side - margin - height; y < side - margin; ++y) {
      for (int x = left; x < left + bar; ++x) {
        mark.at(x, y) = 255;
      }
    }
  }
  return mark;
}

void tint(const AlphaBitmap& bitmap, Ink ink, double cornerRadius, std::span<std::uint8_t> pixels) {
  assert(pixels.size() == bitmap.pixels.size() * 4);
  if (ink == Ink::lightOnPlate) {
    tintOverPlate(bitmap, cornerRadius, pixels);
    return;
  }
  const std::uint8_t grey = ink == Ink::light ? lightInk : darkInk;
  for (std::size_t index = 0; index < bitmap.pixels.size(); ++index) {
    put(pixels, index, {bitmap.pixels[index], grey});
  }
}

}  // namespace vantora
