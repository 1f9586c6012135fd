// SPDX-License-Identifier: MIT
#include "process/line_framer.hpp"

#include <algorithm>

namespace vantora {

bool LineFramer::append(std::string_view bytes) {
  if (bytes.size() > byteLimit_ || pendingBytes() > byteLimit_ - bytes.size()) {
    return false;
  }
  // Taken bytes go when they are at least half of the buffer: each byte that is moved
  // to the front is then paid for by one that was taken.
  if (taken_ > 0 && taken_ >= pendingBytes()) {
    buffer_.erase(0, taken_);
    scanned_ = std::max(scanned_, taken_) - taken_;
    taken_ = 0;
  }
  buffer_.append(bytes);
  return true;
}

std::optional<std::string_view> LineFramer::takeLine() {
  const std::size_t end = buffer_.find('\n', std::max(scanned_, taken_));
  if (end == std::string::npos) {
    scanned_ = buffer_.size();
    return std::nullopt;
  }
  const std::string_view line(buffer_.data() + taken_, end - taken_);
  taken_ = end + 1;
  scanned_ = taken_;
  return line;
}

bool LineFramer::feed(std::string_view bytes,
                      const std::function<bool(std::string_view line)>& take) {
  if (!append(bytes)) {
    return false;
  }
  while (const auto line = takeLine()) {
    if (!take(*line)) {
      return false;
    }
  }
  return true;
}

// A string that is assigned an empty one keeps its memory.
void LineFramer::clear() {
  std::string().swap(buffer_);
  taken_ = 0;
  scanned_ = 0;
}

}  // namespace vantora
