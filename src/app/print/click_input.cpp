// SPDX-License-Identifier: MIT
#include "app/print/click_input.hpp"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <utility>

namespace vantora {
namespace {

// A terminal's input belongs to the person's shell, and a file holds no clicks.
bool isPipe(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

/// Feeds `clicks` with one reading: what is left makes the descriptor readable again. Returns
/// false at the end.
bool readOnce(int descriptor, BlockClicks& clicks) {
  pollfd input{descriptor, POLLIN, 0};
  if (poll(&input, 1, 0) != 1) {
    return true;  // another reader was first
  }
  std::array<char, 4096> bytes{};
  const ssize_t count = ::read(descriptor, bytes.data(), bytes.size());
  if (count > 0) {
    clicks.feed({bytes.data(), static_cast<std::size_t>(count)});
    return true;
  }
  return count < 0 && (errno == EINTR || errno == EAGAIN);
}

}  // namespace

ClickInput::ClickInput(uv_loop_t& loop, int descriptor, std::function<void(BlockButton)> onClick) {
  if (!isPipe(descriptor)) {
    return;
  }
  const auto readable = [this, descriptor, clicks = BlockClicks(std::move(onClick))]() mutable {
    if (!readOnce(descriptor, clicks)) {
      watch_.stop();
    }
  };
  if (watch_.start(loop, descriptor, readable) == 0) {
    watch_.letLoopEnd();
  }
}

}  // namespace vantora
