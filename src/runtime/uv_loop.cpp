// SPDX-License-Identifier: MIT
#include "runtime/uv_loop.hpp"

#include <cassert>
#include <condition_variable>
#include <exception>
#include <future>
#include <mutex>
#include <system_error>
#include <utility>

#include "runtime/thread_hints.hpp"

namespace vantora {

UvLoop::UvLoop() {
  if (const int status = uv_loop_init(&loop_); status != 0) {
    throw std::system_error(-status, std::generic_category());
  }
  try {
    queue_ = std::make_unique<UvTaskQueue>(loop_);
  } catch (...) {
    close();
    throw;
  }
}

UvLoop::~UvLoop() {
  queue_.reset();
  close();
}

void UvLoop::close() {
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

struct UvQueueThread::State {
  std::mutex mutex;
  std::condition_variable changed;
  bool hasEnded = false;  // guarded by mutex
};

UvQueueThread::UvQueueThread(std::string label) : state_(std::make_shared<State>()) {
  std::promise<void> ready;
  thread_ = std::thread([this, &ready, state = state_, label = std::move(label)] {
    nameThisThread(label);
    try {
      UvLoop loop;
      loop_ = &loop.raw();
      queue_ = &loop.queue();
      ready.set_value();  // from here on nothing of the constructor's is used
      loop.run();
    } catch (const std::system_error&) {
      ready.set_exception(std::current_exception());
    }
    const std::lock_guard lock(state->mutex);
    state->hasEnded = true;
    state->changed.notify_all();
  });
  try {
    ready.get_future().get();
  } catch (...) {
    thread_.join();
    throw;
  }
}

UvQueueThread::~UvQueueThread() {
  assert(std::this_thread::get_id() != thread_.get_id());
  stop();
  thread_.join();
}

void UvQueueThread::stop() {
  if (std::exchange(isStopping_, true)) {
    return;
  }
  queue_->post([loop = loop_] { uv_stop(loop); });
}

bool UvQueueThread::waitUntil(std::chrono::steady_clock::time_point deadline) {
  std::unique_lock lock(state_->mutex);
  return state_->changed.wait_until(lock, deadline, [this] { return state_->hasEnded; });
}

}  // namespace vantora
