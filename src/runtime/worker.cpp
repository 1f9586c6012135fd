// SPDX-License-Identifier: MIT
#include "runtime/worker.hpp"

#include <mutex>
#include <utility>

namespace vantora {

struct ThreadWorker::Reports {
  std::mutex mutex;
  TaskQueue* queue = nullptr;  // guarded by mutex; null once the worker has ended

  void post(Task done) {
    const std::lock_guard lock(mutex);
    if (queue != nullptr) {
      queue->post(std::move(done));
    }
  }
};

ThreadWorker::ThreadWorker(TaskQueue& queue, Seconds endTimeout)
    : endTimeout_(endTimeout), reports_(std::make_shared<Reports>()) {
  reports_->queue = &queue;
}

ThreadWorker::~ThreadWorker() {
  if (!hasEnded_) {
    (void)endBy(std::chrono::steady_clock::now() +
                std::chrono::duration_cast<std::chrono::steady_clock::duration>(endTimeout_));
  }
}

bool ThreadWorker::endBy(std::chrono::steady_clock::time_point deadline) {
  hasEnded_ = true;
  const bool isIdle = thread_.endBy(deadline);
  const std::lock_guard lock(reports_->mutex);
  reports_->queue = nullptr;
  return isIdle;
}

void ThreadWorker::run(Task work, Task done) {
  Task whole = [reports = reports_, work = std::move(work), done = std::move(done)]() mutable {
    work();
    work = nullptr;
    reports->post(std::move(done));
  };
  if (!thread_.post(std::move(whole))) {
    whole();  // NOLINT(bugprone-use-after-move): not taken, says post()
  }
}

}  // namespace vantora
