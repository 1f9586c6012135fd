// SPDX-License-Identifier: MIT
#include "runtime/work_thread.hpp"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "runtime/thread_hints.hpp"

namespace vantora {

// Shared with the thread, which may be left behind.
struct WorkThread::Core {
  std::string label;

  std::mutex mutex;
  std::condition_variable isFinished;
  std::deque<Task> tasks;  // guarded by mutex
  bool hasThread = false;  // guarded by mutex

  void run() {
    nameThisThread(label);
    std::unique_lock lock(mutex);
    while (!tasks.empty()) {
      Task task = std::move(tasks.front());
      tasks.pop_front();
      lock.unlock();
      task();
      task = nullptr;
      lock.lock();
    }
    hasThread = false;
    isFinished.notify_all();
  }
};

WorkThread::WorkThread(std::string label) : core_(std::make_shared<Core>()) {
  core_->label = std::move(label);
}

WorkThread::~WorkThread() {
  if (!hasEnded_) {
    (void)endBy(std::chrono::steady_clock::time_point::max());
  }
}

bool WorkThread::post(Task&& task) {
  const std::lock_guard lock(core_->mutex);
  if (!core_->hasThread) {
    try {
      std::thread([core = core_] { core->run(); }).detach();
    } catch (const std::system_error&) {
      return false;
    }
    core_->hasThread = true;
  }
  core_->tasks.push_back(std::move(task));
  return true;
}

bool WorkThread::endBy(std::chrono::steady_clock::time_point deadline) {
  hasEnded_ = true;
  std::deque<Task> dropped;
  std::unique_lock lock(core_->mutex);
  const bool isFinished =
      core_->isFinished.wait_until(lock, deadline, [this] { return !core_->hasThread; });
  dropped.swap(core_->tasks);
  return isFinished;
}

}  // namespace vantora
