// SPDX-License-Identifier: MIT
//
// The main run loop's part of Core Foundation, over dispatch/main_run_loop.hpp. Played: adding
// an observer or a source retains it until it is removed; a run ends when it is stopped or its
// time is over, and says which.
#import <CoreFoundation/CoreFoundation.h>

#include <cstdlib>

#include "dispatch/main_run_loop.hpp"
#include "frameworks/CoreFoundation/run_loop_source.hpp"
#include "frameworks/Foundation/values.hpp"
#include "frameworks/System/clock.hpp"
#include "objc/fault.hpp"

@interface StandInRunLoopObserver : NSObject {
 @public
  CFRunLoopObserverCallBack callout_;
  void* info_;
}
@end
@implementation StandInRunLoopObserver
@end

@interface StandInMainLoop : NSObject
@end
@implementation StandInMainLoop
@end

@implementation StandInRunLoopSource
@end

namespace {

bool isStopped = false;
StandInMainLoop* const mainLoop = [[StandInMainLoop alloc] init];

std::string modeNamed(CFRunLoopMode mode) {
  return standin::textOf((__bridge NSString*)mode);
}

}  // namespace

extern "C" {

const CFRunLoopMode kCFRunLoopDefaultMode = CFSTR("kCFRunLoopDefaultMode");
const CFRunLoopMode kCFRunLoopCommonModes = CFSTR("kCFRunLoopCommonModes");

CFRunLoopRef CFRunLoopGetMain() {
  return (__bridge CFRunLoopRef)mainLoop;
}

CFRunLoopObserverRef CFRunLoopObserverCreate(CFAllocatorRef, CFOptionFlags activities,
                                             Boolean repeats, CFIndex,
                                             CFRunLoopObserverCallBack callout,
                                             CFRunLoopObserverContext* context) {
  if (activities != kCFRunLoopBeforeWaiting || repeats == 0 || context->version != 0) {
    standin::fault("the stand-in knows repeating observers before waiting alone");
  }
  StandInRunLoopObserver* observer = [[StandInRunLoopObserver alloc] init];
  observer->callout_ = callout;
  observer->info_ = context->info;
  return (__bridge_retained CFRunLoopObserverRef)observer;
}

void CFRunLoopAddObserver(CFRunLoopRef, CFRunLoopObserverRef reference, CFRunLoopMode mode) {
  StandInRunLoopObserver* observer = (__bridge StandInRunLoopObserver*)reference;
  standin::MainRunLoop::addObserver(reference, modeNamed(mode), [observer] {
    observer->callout_((__bridge CFRunLoopObserverRef)observer, kCFRunLoopBeforeWaiting,
                       observer->info_);
  });
}

void CFRunLoopRemoveObserver(CFRunLoopRef, CFRunLoopObserverRef observer, CFRunLoopMode mode) {
  standin::MainRunLoop::removeObserver(observer, modeNamed(mode));
}

void CFRunLoopAddSource(CFRunLoopRef, CFRunLoopSourceRef reference, CFRunLoopMode mode) {
  StandInRunLoopSource* source = (__bridge StandInRunLoopSource*)reference;
  standin::MainRunLoop::addSource(reference, modeNamed(mode),
                                  [source] { source->perform_(source->context_); });
}

void CFRunLoopRemoveSource(CFRunLoopRef, CFRunLoopSourceRef source, CFRunLoopMode mode) {
  standin::MainRunLoop::removeSource(source, modeNamed(mode));
}

CFRunLoopRunResult CFRunLoopRunInMode(CFRunLoopMode mode, CFTimeInterval seconds, Boolean) {
  constexpr auto timedOut = CFRunLoopRunResult(3);
  isStopped = false;
  // A test on a busy machine may ask for more time.
  const char* factor = std::getenv("STAND_IN_TIME_FACTOR");
  const double limit = seconds * (factor != nullptr ? std::atof(factor) : 1);
  const uint64_t end = standin::uptime() + static_cast<uint64_t>(limit * 1e9);
  standin::MainRunLoop::run(
      modeNamed(mode), [] { return isStopped; }, end);
  return isStopped ? kCFRunLoopRunStopped : timedOut;
}

void CFRunLoopRun() {
  isStopped = false;
  standin::MainRunLoop::run(standin::MainRunLoop::defaultMode, [] { return isStopped; });
}

void CFRunLoopStop(CFRunLoopRef loop) {
  if (loop != CFRunLoopGetMain()) {
    standin::fault("CFRunLoopStop is called with another loop than the main one");
  }
  isStopped = true;
  standin::MainRunLoop::wake();
}

}  // extern "C"
