// SPDX-License-Identifier: MIT
//
// Cuts a stream of bytes into lines, with a limit on how much may wait. Knows nothing of
// text encodings: a character split across two reads is whole again in its line.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace vantora {

/// Every byte is moved and looked at a constant number of times, however small the
/// pieces are in which it arrives. One thread.
class LineFramer {
 public:
  /// At most `byteLimit` bytes may wait, complete lines that were not taken included.
  explicit LineFramer(std::size_t byteLimit) : byteLimit_(byteLimit) {}

  /// Adds what arrived. False, and nothing is added, when more than the limit would then
  /// wait: the limit is checked before any line is taken out of what arrived.
  [[nodiscard]] bool append(std::string_view bytes);

  /// Takes the next complete line, without its line feed (a carriage return before it
  /// stays: to JSON it is white space). Nothing while no line is complete; a last line
  /// without a line feed is never one. Valid until the next append().
  [[nodiscard]] std::optional<std::string_view> takeLine();

  /// Adds what arrived and gives each complete line to `take`, until it returns false. False
  /// then, and when more than the limit would wait. `take` may call clear().
  [[nodiscard]] bool feed(std::string_view bytes,
                          const std::function<bool(std::string_view line)>& take);

  /// Forgets what waits, and gives the memory back that it took.
  void clear();

  /// How many bytes wait.
  [[nodiscard]] std::size_t pendingBytes() const { return buffer_.size() - taken_; }

 private:
  std::size_t byteLimit_;
  std::string buffer_;
  std::size_t taken_ = 0;    // bytes at the front that were taken as lines
  std::size_t scanned_ = 0;  // bytes at the front that hold no line feed that was not taken
};

}  // namespace vantora
