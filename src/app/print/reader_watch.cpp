// SPDX-License-Identifier: MIT
#include "app/print/reader_watch.hpp"

#include <sys/epoll.h>

#include <memory>
#include <utility>

#include "runtime/unique_fd.hpp"

namespace vantora {

struct ReaderWatch::Watch {
  uv_poll_t handle{};
  // libuv makes what it polls non-blocking, for every program that has it: so it gets an epoll
  // instance of its own, which holds the descriptor.
  UniqueFd instance;
  std::function<void()> onGone;
};

ReaderWatch::ReaderWatch(uv_loop_t& loop, int descriptor, std::function<void()> onGone) {
  auto watch = std::make_unique<Watch>();
  watch->instance = UniqueFd(epoll_create1(EPOLL_CLOEXEC));
  watch->onGone = std::move(onGone);
  // EPOLLERR and EPOLLHUP are reported without being asked for (epoll_ctl(2)); a file is EPERM.
  epoll_event nothingElse{};
  if (!watch->instance ||
      epoll_ctl(watch->instance.get(), EPOLL_CTL_ADD, descriptor, &nothingElse) != 0 ||
      uv_poll_init(&loop, &watch->handle, watch->instance.get()) != 0) {
    return;
  }
  watch_ = watch.release();
  watch_->handle.data = watch_;
  uv_poll_start(&watch_->handle, UV_READABLE, [](uv_poll_t* handle, int, int) {
    uv_poll_stop(handle);
    static_cast<Watch*>(handle->data)->onGone();
  });
  uv_unref(reinterpret_cast<uv_handle_t*>(&watch_->handle));
}

ReaderWatch::~ReaderWatch() {
  if (watch_ != nullptr) {
    uv_close(reinterpret_cast<uv_handle_t*>(&watch_->handle),
             [](uv_handle_t* handle) { delete static_cast<Watch*>(handle->data); });
  }
}

}  // namespace vantora
