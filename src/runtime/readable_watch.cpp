// SPDX-License-Identifier: MIT
#include "runtime/readable_watch.hpp"

#include <memory>
#include <utility>

namespace vantora {

struct ReadableWatch::Handle {
  uv_poll_t poll{};
  std::function<void()> onReadable;
};

int ReadableWatch::start(uv_loop_t& loop, int descriptor, std::function<void()> onReadable) {
  auto handle = std::make_unique<Handle>();
  if (const int error = uv_poll_init(&loop, &handle->poll, descriptor); error != 0) {
    return error;
  }
  handle_ = handle.release();
  handle_->onReadable = std::move(onReadable);
  handle_->poll.data = handle_;
  return uv_poll_start(&handle_->poll, UV_READABLE, [](uv_poll_t* poll, int, int) {
    static_cast<Handle*>(poll->data)->onReadable();
  });
}

ReadableWatch::~ReadableWatch() {
  if (handle_ != nullptr) {
    uv_close(reinterpret_cast<uv_handle_t*>(&handle_->poll),
             [](uv_handle_t* poll) { delete static_cast<Handle*>(poll->data); });
  }
}

void ReadableWatch::stop() {
  if (handle_ != nullptr) {
    uv_poll_stop(&handle_->poll);
  }
}

void ReadableWatch::letLoopEnd() {
  if (handle_ != nullptr) {
    uv_unref(reinterpret_cast<uv_handle_t*>(&handle_->poll));
  }
}

}  // namespace vantora
