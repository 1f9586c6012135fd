// SPDX-License-Identifier: MIT
#include "process/uv_child_input.hpp"

#include <unistd.h>

#include <cerrno>
#include <utility>

#include "process/no_sigpipe_socket.hpp"

namespace vantora {

bool UvChildInput::open(uv_loop_t& loop, int socket, std::function<void()> onLost,
                        std::function<void()> onClosed) {
  if (uv_poll_init(&loop, &poll_, socket) != 0) {
    ::close(socket);
    return false;
  }
  poll_.data = this;
  socket_ = socket;
  preventSigpipe(socket);
  onLost_ = std::move(onLost);
  onClosed_ = std::move(onClosed);
  return true;
}

bool UvChildInput::send(std::string_view& bytes) const {
  while (!bytes.empty()) {
    const ssize_t sent = sendWithoutSigpipe(socket_, bytes);
    if (sent >= 0) {
      bytes.remove_prefix(static_cast<std::size_t>(sent));
    } else if (errno == EAGAIN || errno == EWOULDBLOCK) {
      return true;
    } else if (errno != EINTR) {
      return false;
    }
  }
  return true;
}

bool UvChildInput::write(std::string_view bytes) {
  if (socket_ < 0 || isEnding_) {
    return false;
  }
  if (!pending_.empty()) {
    pending_.append(bytes);
    return true;
  }
  if (!send(bytes)) {
    close();
    return false;
  }
  if (!bytes.empty()) {
    pending_.assign(bytes);
    uv_poll_start(&poll_, UV_WRITABLE, [](uv_poll_t* poll, int, int) {
      static_cast<UvChildInput*>(poll->data)->flush();
    });
  }
  return true;
}

void UvChildInput::flush() {
  // An error of the poll itself shows again as one of send().
  std::string_view rest = pending_;
  if (!send(rest)) {
    close();
    onLost_();
    return;
  }
  pending_.erase(0, pending_.size() - rest.size());
  if (pending_.empty()) {
    pending_.shrink_to_fit();
    uv_poll_stop(&poll_);
    if (isEnding_) {
      close();
    }
  }
}

void UvChildInput::closeAfterFlush() {
  isEnding_ = true;
  if (pending_.empty()) {
    close();
  }
}

void UvChildInput::close() {
  if (socket_ < 0) {
    return;
  }
  pending_ = {};
  uv_close(reinterpret_cast<uv_handle_t*>(&poll_),
           [](uv_handle_t* handle) { static_cast<UvChildInput*>(handle->data)->onClosed_(); });
  // libuv allows it once the handle is closing.
  ::close(std::exchange(socket_, -1));
}

}  // namespace vantora
