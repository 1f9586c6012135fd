// SPDX-License-Identifier: MIT
#include "app/print/click_input.hpp"

#include <poll.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <memory>
#include <utility>

namespace vantora {
namespace {

// A terminal's input belongs to the person's shell, and a file holds no clicks.
bool isPipe(int descriptor) {
  struct stat status {};
  return fstat(descriptor, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

}  // namespace

struct ClickInput::Watch {
  uv_poll_t handle{};
  int descriptor = -1;
  BlockClicks clicks;

  // Reads once: what is left makes the descriptor readable again.
  void read() {
    pollfd input{descriptor, POLLIN, 0};
    if (poll(&input, 1, 0) != 1) {
      return;  // another reader was first
    }
    std::array<char, 4096> bytes{};
    const ssize_t count = ::read(descriptor, bytes.data(), bytes.size());
    if (count > 0) {
      clicks.feed({bytes.data(), static_cast<std::size_t>(count)});
    } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
      uv_poll_stop(&handle);
    }
  }
};

ClickInput::ClickInput(uv_loop_t& loop, int descriptor, std::function<void(BlockButton)> onClick) {
  if (!isPipe(descriptor)) {
    return;
  }
  auto watch = std::make_unique<Watch>(Watch{{}, descriptor, BlockClicks(std::move(onClick))});
  if (uv_poll_init(&loop, &watch->handle, descriptor) != 0) {
    return;
  }
  watch_ = watch.release();
  watch_->handle.data = watch_;
  uv_poll_start(&watch_->handle, UV_READABLE, [](uv_poll_t* handle, int status, int) {
    if (status < 0) {
      uv_poll_stop(handle);
    } else {
      static_cast<Watch*>(handle->data)->read();
    }
  });
  uv_unref(reinterpret_cast<uv_handle_t*>(&watch_->handle));
}

ClickInput::~ClickInput() {
  if (watch_ != nullptr) {
    uv_close(reinterpret_cast<uv_handle_t*>(&watch_->handle),
             [](uv_handle_t* handle) { delete static_cast<Watch*>(handle->data); });
  }
}

}  // namespace vantora
