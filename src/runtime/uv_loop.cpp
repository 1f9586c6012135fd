// SPDX-License-Identifier: MIT
#include "runtime/uv_loop.hpp"

#include <cassert>
#include <cstdlib>
#include <future>

#include "runtime/thread_hints.hpp"

namespace vantora {

UvLoop::UvLoop() {
  // Fails only when the process has no memory or descriptor left at its start.
  if (uv_loop_init(&loop_) != 0) {
    std::abort();
  }
  queue_ = std::make_unique<UvTaskQueue>(loop_);
}

UvLoop::~UvLoop() {
  queue_.reset();
  uv_walk(
      &loop_,
      [](uv_handle_t* handle, void*) {
        if (uv_is_closing(handle) == 0) {
          uv_close(handle, nullptr);
        }
      },
      nullptr);
  uv_run(&loop_, UV_RUN_DEFAULT);
  uv_loop_close(&loop_);
}

void UvLoop::run() {
  uv_run(&loop_, UV_RUN_DEFAULT);
}

void UvLoop::stop() {
  uv_stop(&loop_);
}

UvQueueThread::UvQueueThread(std::string label) {
  std::promise<void> ready;
  thread_ = std::thread([this, &ready, label = std::move(label)] {
    nameThisThread(label);
    UvLoop loop;
    loop_ = &loop.raw();
    queue_ = &loop.queue();
    ready.set_value();
    loop.run();
  });
  ready.get_future().wait();
}

UvQueueThread::~UvQueueThread() {
  assert(std::this_thread::get_id() != thread_.get_id());
  queue_->post([loop = loop_] { uv_stop(loop); });
  thread_.join();
}

}  // namespace vantora
