// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>

namespace vantora {

/// Notices when nobody can read any more what is written to a descriptor: the reader of a pipe or
/// socket is gone, the terminal is closed. A file always has readers. Linux; made and destroyed on
/// the loop's thread, while the loop is open.
class ReaderWatch {
 public:
  /// Calls `onGone` once, from the loop. Neither owns nor changes `descriptor`, which may be
  /// shared with other programs and must stay open. Where the system has no descriptor left to
  /// watch by, nothing is noticed but by writing.
  ReaderWatch(uv_loop_t& loop, int descriptor, std::function<void()> onGone);
  ~ReaderWatch();
  ReaderWatch(const ReaderWatch&) = delete;
  ReaderWatch& operator=(const ReaderWatch&) = delete;

 private:
  struct Watch;
  Watch* watch_ = nullptr;
};

}  // namespace vantora
