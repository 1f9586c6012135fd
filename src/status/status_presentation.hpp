// SPDX-License-Identifier: MIT
//
// What the status renderer produces. The image is a list of texts with their places:
// a picture that is drawn when a face asks for it, at the scale the face asks for, from
// these values alone.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "status/text_engine.hpp"

namespace vantora {

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
  StatusImage image;
  double width = 0;               ///< Of the image, in points; the status item takes this length.
  std::string accessibilityText;  ///< Spoken description of everything shown.
  std::optional<std::string> warning;  ///< When something was reduced to fit.
  bool operator==(const StatusPresentation&) const = default;
};

}  // namespace vantora
