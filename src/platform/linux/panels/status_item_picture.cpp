// SPDX-License-Identifier: MIT
#include "platform/linux/panels/status_item_picture.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "status/line_style.hpp"
#include "status/status_modules.hpp"

namespace vantora {
namespace {

constexpr std::string_view moduleSeparator = " · ";

StyledText styled(const StatusLine& line) {
  return LineStyle::styled(line.text, line.font, line.metric);
}

double maxPointSize(const StyledText& text) {
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
  const double present = maxPointSize(text);
  if (present <= 0 || engine.width(text) <= 0) {
    return;
  }
  // Shorter texts are no larger than those of three signs: "9%" and "10%" look alike.
  const double width = std::max(engine.width(text), engine.width({{"00%", text.front().font}}));
  // Digits are about 0.72 of the point size high, and no descender shares their row.
  constexpr double digitHeight = 0.72;
  constexpr double rowFill = 0.82;
  const double byHeight = rowHeight * rowFill / digitHeight / present;
  const double byWidth = (image.width - 2 * margin) / width;
  // In half points, so that the squares of many texts share a few sizes of the glyphs.
  const double size = std::max(std::floor(std::min(byHeight, byWidth) * present * 2) / 2, 1.0);
  const double factor = size / present;
  StyledText fitted = scaled(text, factor);
  const double x = (image.width - engine.width(fitted)) / 2;
  const double y = bottom + (rowHeight - present * factor * digitHeight) / 2;
  image.texts.push_back({.x = x, .y = y, .text = std::move(fitted)});
}

/// What follows the first `count` lines, with the line feed before it.
std::string_view linesBehind(std::string_view text, std::size_t count) {
  std::size_t end = text.find('\n');
  for (std::size_t line = 1; line < count && end != std::string_view::npos; ++line) {
    end = text.find('\n', end + 1);
  }
  return end == std::string_view::npos ? std::string_view() : text.substr(end);
}

/// A pixel as it is sent: alpha, red, green, blue.
using Pixel = std::array<std::uint8_t, 4>;

// Neutral greys that suit panels of either kind without being harsh.
constexpr std::uint8_t lightInk = 0xF5;
constexpr std::uint8_t darkInk = 0x1E;
constexpr std::uint8_t plateGrey = 0x26;
constexpr double plateOpacity = 0.92;

constexpr std::uint8_t rounded(double value) {
  // In halves, because std::lround is no constant expression.
  return static_cast<std::uint8_t>(static_cast<int>(value * 2 + 1) / 2);
}

constexpr Pixel greyPixel(std::uint8_t alpha, std::uint8_t grey) {
  return {alpha, grey, grey, grey};
}

// Ink over the plate, both without premultiplied colours.
constexpr Pixel overPlate(std::uint8_t ink, double plateAlpha) {
  const double inkAlpha = ink / 255.0;
  const double alpha = inkAlpha + plateAlpha * (1 - inkAlpha);
  if (alpha <= 0) {
    return {};
  }
  const double grey = (lightInk * inkAlpha + plateGrey * plateAlpha * (1 - inkAlpha)) / alpha;
  return greyPixel(rounded(alpha * 255), rounded(grey));
}

// Away from the corners the plate is the same everywhere: a pixel for each amount of ink.
constexpr std::array<Pixel, 256> plainPlate = [] {
  std::array<Pixel, 256> table{};
  for (std::size_t ink = 0; ink < table.size(); ++ink) {
    table[ink] = overPlate(static_cast<std::uint8_t>(ink), plateOpacity);
  }
  return table;
}();

// How much of a pixel of the plate's corner its rounding leaves, 0 to 1; counted from the
// corner inwards.
double cornerCoverage(int column, int row, double radius) {
  const double dx = std::max(radius - column - 0.5, 0.0);
  const double dy = std::max(radius - row - 0.5, 0.0);
  return dx == 0 || dy == 0 ? 1 : std::clamp(radius - std::sqrt(dx * dx + dy * dy) + 0.5, 0.0, 1.0);
}

void put(std::uint8_t* pixel, const Pixel& value) {
  std::memcpy(pixel, value.data(), sizeof(Pixel));
}

// Most of a picture has no ink, so that it is put by whole runs.
void putPlainPlate(std::span<const std::uint8_t> inks, std::uint8_t* pixel) {
  constexpr auto barePair = std::bit_cast<std::uint64_t>(std::array{plainPlate[0], plainPlate[0]});
  const std::uint8_t* ink = inks.data();
  const std::uint8_t* const end = ink + inks.size();
  while (ink != end) {
    std::uint64_t together = 1;  // the inks of a run
    if (static_cast<std::size_t>(end - ink) >= sizeof together) {
      std::memcpy(&together, ink, sizeof together);
    }
    if (together == 0) {
      ink += sizeof together;
      for (std::size_t pair = 0; pair < sizeof together / 2; ++pair) {
        std::memcpy(pixel, &barePair, sizeof barePair);
        pixel += sizeof barePair;
      }
      continue;
    }
    const std::uint8_t* const runEnd = ink + std::min<std::ptrdiff_t>(end - ink, sizeof together);
    for (; ink != runEnd; ++ink) {
      put(pixel, plainPlate[*ink]);
      pixel += sizeof(Pixel);
    }
  }
}

void tintOverPlate(const AlphaBitmap& bitmap, double radius, std::span<std::uint8_t> pixels) {
  putPlainPlate(bitmap.pixels, pixels.data());
  // All four corners are alike, so each coverage is computed once.
  const int reach = static_cast<int>(std::ceil(radius));
  const int columns = std::min(reach, (bitmap.width + 1) / 2);
  const int rows = std::min(reach, (bitmap.height + 1) / 2);
  const auto width = static_cast<std::size_t>(bitmap.width);
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < columns; ++column) {
      const double coverage = cornerCoverage(column, row, radius);
      if (coverage >= 1) {
        continue;
      }
      const Pixel bare = overPlate(0, plateOpacity * coverage);
      for (const int y : {row, bitmap.height - 1 - row}) {
        for (const int x : {column, bitmap.width - 1 - column}) {
          const std::size_t index =
              static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x);
          const std::uint8_t ink = bitmap.pixels[index];
          put(&pixels[index * sizeof(Pixel)],
              ink == 0 ? bare : overPlate(ink, plateOpacity * coverage));
        }
      }
    }
  }
}

}  // namespace

std::string labelText(const StatusPresentation& presentation) {
  if (presentation.modules.empty()) {
    return StatusPresentation::emptyMark;
  }
  std::string label;
  for (const StatusModule& module : presentation.modules) {
    if (!label.empty()) {
      label += moduleSeparator;
    }
    label += StatusModules::joinedLines(module);
  }
  return label;
}

SquareContent squareContent(const StatusPresentation& presentation,
                            const std::optional<UUID>& chosen) {
  const std::vector<StatusModule>& modules = presentation.modules;
  if (modules.empty()) {
    return {{{StatusPresentation::emptyMark, {Typeface::system, 9}}}, {}};
  }
  auto reading = std::find_if(modules.begin(), modules.end(),
                              [&](const StatusModule& module) { return module.id == chosen; });
  if (reading == modules.end()) {
    reading = std::find_if(modules.begin(), modules.end(),
                           [](const StatusModule& module) { return module.hasReading(); });
  }
  const StatusModule& shown = reading != modules.end() ? *reading : modules.front();
  return {styled(shown.top), styled(shown.bottom)};
}

std::vector<ModuleSquare> moduleSquares(const StatusPresentation& presentation) {
  const std::vector<StatusModule>& modules = presentation.modules;
  if (modules.empty()) {
    return {{"vantora", "Vantora", presentation.toolTip, squareContent(presentation)}};
  }
  constexpr std::size_t twoDigits = 10;
  const std::string_view messages = linesBehind(presentation.toolTip, modules.size());
  std::vector<ModuleSquare> squares;
  for (const StatusModule& module : modules) {
    const std::size_t number = squares.size() + 1;
    ModuleSquare square{"vantora-" + module.id.text(), "Vantora ", {}, {}};
    square.title += number < twoDigits && modules.size() >= twoDigits ? "0" : "";
    square.title += std::to_string(number);
    for (const StatusLine* line : {&module.top, &module.bottom}) {
      if (line->metric != MetricID::none) {
        square.title += square.toolTip.empty() ? ": " : ", ";
        square.title += title(line->metric);
        square.toolTip += square.toolTip.empty() ? "" : "\n";
        square.toolTip += std::string(title(line->metric)) + ": " + line->text;
      }
    }
    square.toolTip += messages;
    square.content = {styled(module.top), styled(module.bottom)};
    squares.push_back(std::move(square));
  }
  return squares;
}

StatusImage squareImage(const SquareContent& content, double side, TextEngine& engine) {
  StatusImage image{.width = side, .height = side, .texts = {}};
  const double margin = std::max(1.0, side / 22);
  const double inner = side - 2 * margin;
  if (content.top.empty() || content.bottom.empty()) {
    placeLine(image, content.top.empty() ? content.bottom : content.top, margin, inner, margin,
              engine);
    return image;
  }
  placeLine(image, content.bottom, margin, inner / 2, margin, engine);
  placeLine(image, content.top, margin + inner / 2, inner / 2, margin, engine);
  return image;
}

ImageFrame centredFrame(const StatusImage& image, double width, double height) {
  return {.width = width,
          .height = height,
          .left = std::floor((width - image.width) / 2),
          .bottom = std::floor((height - image.height) / 2)};
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
  assert(pixels.size() == bitmap.pixels.size() * sizeof(Pixel));
  if (ink == Ink::lightOnPlate) {
    tintOverPlate(bitmap, cornerRadius, pixels);
    return;
  }
  const std::uint8_t grey = ink == Ink::light ? lightInk : darkInk;
  std::uint8_t* pixel = pixels.data();
  for (const std::uint8_t alpha : bitmap.pixels) {
    put(pixel, greyPixel(alpha, grey));
    pixel += sizeof(Pixel);
  }
}

}  // namespace vantora
