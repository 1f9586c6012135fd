// SPDX-License-Identifier: MIT
#include "platform/macos/app/unthrottled_queue.hpp"

#import <Foundation/Foundation.h>

#include <utility>

namespace vantora {
namespace {

class UnthrottledTimer final : public Timer {
 public:
  explicit UnthrottledTimer(TimerHandle timer)
      : timer_(std::move(timer)),
        activity_([NSProcessInfo.processInfo
            beginActivityWithOptions:NSActivityUserInitiatedAllowingIdleSystemSleep
                              reason:@"Leituras na barra de menus"]) {}
  ~UnthrottledTimer() override {
    timer_.reset();
    @autoreleasepool {
      [NSProcessInfo.processInfo endActivity:activity_];
    }
  }
  UnthrottledTimer(const UnthrottledTimer&) = delete;
  UnthrottledTimer& operator=(const UnthrottledTimer&) = delete;

 private:
  TimerHandle timer_;
  const id<NSObject> activity_;
};

}  // namespace

void UnthrottledQueue::post(Task task) {
  queue_.post(std::move(task));
}

TimerHandle UnthrottledQueue::runAfter(Seconds delay, Seconds leeway, Task task) {
  return queue_.runAfter(delay, leeway, std::move(task));
}

TimerHandle UnthrottledQueue::runEvery(Seconds interval, Seconds leeway, Task task) {
  return std::make_unique<UnthrottledTimer>(queue_.runEvery(interval, leeway, std::move(task)));
}

}  // namespace vantora
