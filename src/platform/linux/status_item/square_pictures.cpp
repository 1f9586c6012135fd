// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/square_pictures.hpp"

#include <array>

namespace vantora {
namespace {

// What panels of the usual heights ask for, and twice the smaller ones.
constexpr std::array<int, 6> sides{16, 22, 24, 32, 44, 48};
// Of a side: what the plate's corners are rounded by.
constexpr double cornerShare = 1.0 / 5;

}  // namespace

std::size_t SquarePictures::count() {
  return sides.size();
}

StatusNotifierContent::Picture SquarePictures::picture(std::size_t index,
                                                       const SquareContent& content,
                                                       TextEngine& engine) {
  drawn_.resize(sides.size());
  const double side = sides.at(index);
  const StatusImage image = squareImage(content, side, engine);
  const ImageFrame frame{.width = side, .height = side};
  return {drawn_[index].draw(image, frame, engine, 1), side * cornerShare};
}

}  // namespace vantora
