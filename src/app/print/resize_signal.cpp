// SPDX-License-Identifier: MIT
#include "app/print/resize_signal.hpp"

#include <csignal>
#include <utility>

namespace vantora {

// libuv uses a handle's memory until it has closed it, which may be later than the end of
// the ResizeSignal.
struct ResizeSignal::Watch {
  uv_signal_t handle{};
  std::function<void()> onResize;
};

ResizeSignal::ResizeSignal(uv_loop_t& loop, std::function<void()> onResize)
    : watch_(new Watch{{}, std::move(onResize)}) {
  watch_->handle.data = watch_;
  // Neither call fails for this signal and an open loop.
  uv_signal_init(&loop, &watch_->handle);
  uv_signal_start(
      &watch_->handle,
      [](uv_signal_t* handle, int) { static_cast<Watch*>(handle->data)->onResize(); }, SIGWINCH);
  uv_unref(reinterpret_cast<uv_handle_t*>(&watch_->handle));
}

ResizeSignal::~ResizeSignal() {
  uv_close(reinterpret_cast<uv_handle_t*>(&watch_->handle),
           [](uv_handle_t* handle) { delete static_cast<Watch*>(handle->data); });
}

}  // namespace vantora
