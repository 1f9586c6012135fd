// SPDX-License-Identifier: MIT
//
// A square in every size that panels ask for, drawn when one does and kept until the text
// changes.
#pragma once

#include <cstddef>
#include <vector>

#include "platform/linux/panels/status_item_picture.hpp"
#include "platform/linux/status_item/status_notifier_item.hpp"
#include "status/drawn_image.hpp"

namespace vantora {

/// Lives on the main thread.
class SquarePictures {
 public:
  [[nodiscard]] static std::size_t count();

  /// Valid until the next call with this index.
  [[nodiscard]] StatusNotifierContent::Picture picture(std::size_t index,
                                                       const SquareContent& content,
                                                       TextEngine& engine);

 private:
  std::vector<DrawnImage> drawn_;  // by index
};

}  // namespace vantora
