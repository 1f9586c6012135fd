// SPDX-License-Identifier: MIT
//
// What is shown: the visible modules with their texts, the picture that they make and the
// words for it. Every front end reads this one value. The picture is a list of texts with
// their places, drawn when a front end needs it, at the scale that it needs.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "model/metric.hpp"
#include "model/uuid.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// One line of a visible module.
struct StatusLine {
  MetricID metric = MetricID::none;
  std::string text;         ///< UTF-8; empty where the module has no such line.
  bool hasReading = false;  ///< The text is neither empty nor the dash of a missing reading.
  Font font;                ///< Of the picture. A rate's unit letter is smaller.
  bool operator==(const StatusLine&) const = default;
};

/// A visible module. Sizes and places in points, in the picture.
struct StatusModule {
  UUID id;
  std::size_t index = 0;  ///< Among the configuration's modules, hidden ones included.
  StatusLine top;
  StatusLine bottom;
  double x = 0;  ///< Left edge of its column.
  double width = 0;
  bool operator==(const StatusModule&) const = default;

  [[nodiscard]] bool hasReading() const { return top.hasReading || bottom.hasReading; }
};

/// One line of the picture, already aligned: the left end of its baseline, in points
/// from the picture's lower left corner.
struct PlacedText {
  double x = 0;
  double y = 0;
  StyledText text;
  bool operator==(const PlacedText&) const = default;
};

/// The whole picture, a template (ink without colour). Sizes in points.
struct StatusImage {
  double width = 0;
  double height = 0;
  std::vector<PlacedText> texts;
  bool operator==(const StatusImage&) const = default;
};

struct StatusPresentation {
  /// Shown instead of modules where none is visible.
  static constexpr const char* emptyMark = "VA";

  std::vector<StatusModule> modules;  ///< The visible ones, from the left.
  StatusImage image;
  double width = 0;               ///< Of the image, in points; the status item takes this length.
  std::string accessibilityText;  ///< Spoken description of everything shown.
  std::string toolTip;            ///< The same with a line for each module and each message ("\n"),
                                  ///< and one that says so while sampling is paused.
  std::optional<std::string> warning;  ///< When something was reduced to fit.
  bool operator==(const StatusPresentation&) const = default;
};

}  // namespace vantora
