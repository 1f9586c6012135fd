// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <utility>
#include <vector>

#include "runtime/worker.hpp"

namespace vantora::test {

/// Works as a task of a test's queue, which must outlive it.
class VirtualWorker final : public Worker {
 public:
  explicit VirtualWorker(TaskQueue& queue) : queue_(queue) {}

  void run(Task work, Task done) override {
    held_.emplace_back(std::move(work), std::move(done));
    if (!isHanging_) {
      release();
    }
  }

  /// Work that is given from now on waits for resume(): a disk that does not answer.
  void hang() { isHanging_ = true; }
  void resume() {
    isHanging_ = false;
    release();
  }
  /// How much work waits.
  [[nodiscard]] std::size_t heldCount() const { return held_.size(); }

 private:
  void release() {
    for (auto& [work, done] : std::exchange(held_, {})) {
      queue_.post([&queue = queue_, work = std::move(work), done = std::move(done)] {
        work();
        queue.post(done);
      });
    }
  }

  TaskQueue& queue_;
  std::vector<std::pair<Task, Task>> held_;
  bool isHanging_ = false;
};

}  // namespace vantora::test
