// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

#include "app/print/block_clicks.hpp"
#include "runtime/readable_watch.hpp"

namespace vantora {

/// Reads clicks from a pipe whose other end is a bar. On the loop's thread; keeps no loop
/// running. Where the descriptor is no pipe or socket, or ends, there are none.
class ClickInput {
 public:
  /// `descriptor` stays open; it is read as long as this lives.
  ClickInput(uv_loop_t& loop, int descriptor, std::function<void(BlockButton)> onClick);

 private:
  ReadableWatch watch_;
};

}  // namespace vantora
