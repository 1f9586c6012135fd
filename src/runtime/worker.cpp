// SPDX-License-Identifier: MIT
#include "runtime/worker.hpp"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "runtime/thread_hints.hpp"

namespace vantora {

// Shared with the thread, which may outlive the worker.
struct ThreadWorker::Core {
  struct Job {
    Task work;
    Task done;
  };

  std::mutex mutex;
  std::condition_variable idle;
  TaskQueue* queue = nullptr;  // guarded by mutex; null once the worker has ended
  std::deque<Job> jobs;        // guarded by mutex
  bool hasThread = false;      // guarded by mutex

  void runJobs() {
    std::unique_lock lock(mutex);
    while (!jobs.empty()) {
      Job job = std::move(jobs.front());
      jobs.pop_front();
      lock.unlock();
      job.work();
      job.work = nullptr;
      lock.lock();
      if (queue != nullptr) {
        queue->post(std::move(job.done));
      }
    }
    hasThread = false;
    idle.notify_all();
  }
};

ThreadWorker::ThreadWorker(TaskQueue& queue, Seconds endTimeout)
    : endTimeout_(endTimeout), core_(std::make_shared<Core>()) {
  core_->queue = &queue;
}

ThreadWorker::~ThreadWorker() {
  if (!hasEnded_) {
    (void)endBy(std::chrono::steady_clock::now() +
                std::chrono::duration_cast<std::chrono::steady_clock::duration>(endTimeout_));
  }
}

bool ThreadWorker::endBy(std::chrono::steady_clock::time_point deadline) {
  hasEnded_ = true;
  std::deque<Core::Job> dropped;
  std::unique_lock lock(core_->mutex);
  const bool isIdle = core_->idle.wait_until(lock, deadline, [this] { return !core_->hasThread; });
  core_->queue = nullptr;
  dropped.swap(core_->jobs);
  return isIdle;
}

void ThreadWorker::run(Task work, Task done) {
  {
    const std::lock_guard lock(core_->mutex);
    core_->jobs.push_back({std::move(work), std::move(done)});
    if (std::exchange(core_->hasThread, true)) {
      return;
    }
  }
  try {
    std::thread([core = core_] {
      nameThisThread("vantora-files");
      core->runJobs();
    }).detach();
  } catch (const std::system_error&) {
    core_->runJobs();
  }
}

}  // namespace vantora
