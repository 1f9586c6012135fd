// SPDX-License-Identifier: MIT
#include "platform/macos/app/workspace_power_events.hpp"

#import <AppKit/AppKit.h>
#import <IOKit/ps/IOPowerSources.h>

#include <utility>

#include "platform/macos/base/core_foundation.hpp"

@interface VantoraSleepObserver : NSObject
- (instancetype)initWithWillSleep:(std::function<void()>)willSleep
                          didWake:(std::function<void()>)didWake;
- (void)willSleep:(NSNotification*)notification;
- (void)didWake:(NSNotification*)notification;
@end

@implementation VantoraSleepObserver {
  std::function<void()> willSleep_;
  std::function<void()> didWake_;
}

- (instancetype)initWithWillSleep:(std::function<void()>)willSleep
                          didWake:(std::function<void()>)didWake {
  self = [super init];
  if (self != nil) {
    willSleep_ = std::move(willSleep);
    didWake_ = std::move(didWake);
  }
  return self;
}

- (void)willSleep:(NSNotification*)__unused notification {
  willSleep_();
}

- (void)didWake:(NSNotification*)__unused notification {
  didWake_();
}

@end

namespace vantora {

struct WorkspacePowerEvents::Observation : std::enable_shared_from_this<Observation> {
  Observation(TaskQueue& queue, Handlers wanted) : mainQueue(queue), handlers(std::move(wanted)) {
    // The source calls back on the main run loop, which lives as long as this does not
    // remove it.
    source =
        CFOwned<CFRunLoopSourceRef>(IOPSNotificationCreateRunLoopSource(&powerSourceChanged, this));
    if (source) {
      CFRunLoopAddSource(CFRunLoopGetMain(), source.get(), kCFRunLoopDefaultMode);
    }
    observer = [[VantoraSleepObserver alloc] initWithWillSleep:[this] {
      if (handlers.onWillSleep) {
        handlers.onWillSleep(nullptr);
      }
    }
        didWake:[this] {
          if (handlers.onDidWake) {
            handlers.onDidWake();
          }
        }];
    // Sleep is announced at the workspace's own centre, not at the default one.
    NSNotificationCenter* center = NSWorkspace.sharedWorkspace.notificationCenter;
    [center addObserver:observer
               selector:@selector(willSleep:)
                   name:NSWorkspaceWillSleepNotification
                 object:nil];
    [center addObserver:observer
               selector:@selector(didWake:)
                   name:NSWorkspaceDidWakeNotification
                 object:nil];
  }

  ~Observation() {
    [NSWorkspace.sharedWorkspace.notificationCenter removeObserver:observer];
    if (source) {
      CFRunLoopRemoveSource(CFRunLoopGetMain(), source.get(), kCFRunLoopDefaultMode);
    }
  }
  Observation(const Observation&) = delete;
  Observation& operator=(const Observation&) = delete;

  static void powerSourceChanged(void* context) {
    @autoreleasepool {
      auto* self = static_cast<Observation*>(context);
      self->mainQueue.post([weak = self->weak_from_this()] {
        const auto alive = weak.lock();
        if (alive && alive->handlers.onPowerSourceChange) {
          alive->handlers.onPowerSourceChange();
        }
      });
    }
  }

  TaskQueue& mainQueue;
  Handlers handlers;
  CFOwned<CFRunLoopSourceRef> source;
  VantoraSleepObserver* observer = nil;
};

WorkspacePowerEvents::WorkspacePowerEvents(TaskQueue& mainQueue) : mainQueue_(mainQueue) {}

WorkspacePowerEvents::~WorkspacePowerEvents() = default;

void WorkspacePowerEvents::start(Handlers handlers) {
  observation_ = std::make_shared<Observation>(mainQueue_, std::move(handlers));
}

}  // namespace vantora
