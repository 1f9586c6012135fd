// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/display_thread.hpp"

#include <future>
#include <system_error>
#include <utility>

#include "runtime/thread_hints.hpp"
#include "runtime/uv_loop.hpp"

namespace vantora {

struct OwnDisplayThread::Shared {
  std::promise<void> started;
  std::promise<void> ended;
  uv_loop_t* loop = nullptr;     // set before `started`
  UvTaskQueue* queue = nullptr;  // set before `started`

  void run() {
    nameThisThread("local.vantora.display");
    {
      UvLoop own;
      loop = &own.raw();
      queue = &own.queue();
      started.set_value();
      own.run();
    }
    ended.set_value();
  }
};

OwnDisplayThread::OwnDisplayThread() = default;

OwnDisplayThread::~OwnDisplayThread() {
  if (!thread_.joinable()) {
    return;
  }
  shared_->queue->post([loop = shared_->loop] { uv_stop(loop); });
  if (shared_->ended.get_future().wait_for(endLimit) == std::future_status::ready) {
    thread_.join();
  } else {
    thread_.detach();
  }
}

void OwnDisplayThread::start() {
  auto shared = std::make_shared<Shared>();
  try {
    thread_ = std::thread([shared] { shared->run(); });
  } catch (const std::system_error&) {
    return;  // no thread to be had: the display counts as one that does not answer
  }
  shared->started.get_future().wait();
  shared_ = std::move(shared);
}

void OwnDisplayThread::post(Task task) {
  if (shared_ == nullptr) {
    start();
  }
  if (shared_ != nullptr) {
    shared_->queue->post([loop = shared_->loop, task = std::move(task)] { task(*loop); });
  }
}

}  // namespace vantora
