// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/item_pictures.hpp"

#include <algorithm>
#include <array>

#include "status/rasterise.hpp"

namespace vantora {
namespace {

// The item is 6 points longer than the picture: 3 on either side.
constexpr double sideMargin = 3;
constexpr double plateRadius = 5;
// Pixels in a point. Both are offered: the panel takes what suits the screen that it is on now,
// which may change while the item is shown.
constexpr int maxScale = 2;
constexpr std::array<int, 4> markSides{16, 22, 32, 48};

std::size_t scaleCount(const Panel& panel) {
  return panel.drawsLargest ? 1 : std::size_t{maxScale};
}

}  // namespace

void ItemPictures::setPanel(const Panel& panel) {
  panel_ = &panel;
  isVertical_ = false;
  onlyScale_ = maxScale;
  drawn_.clear();
  takeContent();
}

bool ItemPictures::setVertical(bool isVertical) {
  if (isVertical == isVertical_) {
    return false;
  }
  isVertical_ = isVertical;
  drawn_.clear();
  takeContent();
  return true;
}

bool ItemPictures::setOnlyScale(int scale) {
  if (scale == onlyScale_) {
    return false;
  }
  onlyScale_ = scale;
  return panel_->drawsLargest && form() == PictureForm::wide;
}

bool ItemPictures::setSquareModule(const std::optional<UUID>& module) {
  squareModule_ = module;
  const SquareContent before = square_;
  takeContent();
  return square_ != before;
}

ItemPictures::News ItemPictures::show(const StatusPresentation& presentation) {
  News news{.image = presentation.image != presentation_.image,
            .toolTip = presentation.toolTip != presentation_.toolTip};
  presentation_ = presentation;
  if (form() == PictureForm::wide) {
    news.icon = news.image;
  } else if (news.image) {
    const SquareContent square = square_;
    const std::string label = label_;
    takeContent();
    news.icon = square != square_;
    news.label = label != label_;
  }
  return news;
}

PictureForm ItemPictures::form() const {
  return formOn(*panel_, isVertical_);
}

double ItemPictures::length() const {
  return presentation_.image.width + 2 * sideMargin;
}

// Makes what the form needs, so that the next presentation can be compared with it.
void ItemPictures::takeContent() {
  const PictureForm shown = form();
  square_ =
      shown == PictureForm::square ? squareContent(presentation_, squareModule_) : SquareContent{};
  label_ = shown == PictureForm::label ? labelText(presentation_) : std::string();
}

std::size_t ItemPictures::count() const {
  switch (form()) {
    case PictureForm::wide:
      return scaleCount(*panel_) + panel_->exactHeights.size();
    case PictureForm::label:
      return markSides.size();
    case PictureForm::square:
      return SquarePictures::count();
  }
  return 0;
}

StatusNotifierContent::Picture ItemPictures::picture(std::size_t index) {
  if (form() == PictureForm::square) {
    return squares_.picture(index, square_, engine_);
  }
  if (index >= drawn_.size()) {
    drawn_.resize(index + 1);
  }
  Drawn& drawn = drawn_[index];
  switch (form()) {
    case PictureForm::wide: {
      const StatusImage& image = presentation_.image;
      ImageFrame frame{.width = length(), .height = image.height, .left = sideMargin};
      const std::size_t scales = scaleCount(*panel_);
      double scale = 1;
      if (index < scales) {
        scale = panel_->drawsLargest ? onlyScale_ : static_cast<double>(index + 1);
      } else {
        frame.height = panel_->exactHeights[index - scales];
        frame.bottom = centredFrame(image, frame.width, frame.height).bottom;
      }
      return {drawn.image.draw(image, frame, engine_, scale), plateRadius * scale};
    }
    case PictureForm::label:
      if (drawn.mark.pixels.empty()) {
        drawn.mark = applicationMark(markSides.at(index));
      }
      return {drawn.mark, 0};
    case PictureForm::square:
      break;
  }
  return {drawn.mark, 0};
}

AlphaBitmap ItemPictures::trayPicture(int width, int height, int scale) {
  // A hair less than the window, so that rounding up meets its pixels.
  constexpr double hair = 1e-6;
  const double pointsWide = static_cast<double>(width) / scale;
  const double pointsHigh = static_cast<double>(height) / scale;
  const auto drawn = [&](const StatusImage& image) {
    ImageFrame frame = centredFrame(image, pointsWide, pointsHigh);
    frame.width -= hair;
    frame.height -= hair;
    return trayDrawn_.draw(image, frame, engine_, scale);
  };
  if (pointsWide + 1 >= presentation_.image.width) {
    return drawn(presentation_.image);
  }
  const double side = std::min(pointsWide, pointsHigh);
  return drawn(squareImage(squareContent(presentation_, squareModule_), side, engine_));
}

}  // namespace vantora
