// SPDX-License-Identifier: MIT
//
// The application and its loop. Played: the delegate is held weakly; an event is handled in a
// pool of its own, and what runs between two events shares one pool with the second;
// terminate: asks the delegate, notifies it, and ends the process without returning; systems
// before 14 lack what came with it.
#include "frameworks/AppKit/application.hpp"

#include <cstdlib>
#include <deque>

#include "dispatch/main_run_loop.hpp"
#include "dispatch/queues.hpp"
#include "frameworks/AppKit/controls.hpp"
#include "frameworks/Foundation/process_info.hpp"
#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"
#include "objc/autorelease_pools.hpp"
#include "objc/fault.hpp"

extern "C" {
__kindof NSApplication* NSApp = nil;
}

namespace {

struct Event {
  NSEvent* event;  // nil for what is no event of the keyboard or mouse
  std::function<void()> handle;
};

std::deque<Event> events;
std::vector<std::string> asked;

NSNotification* notification() {
  return [[NSNotification alloc] init];
}

void requireSystem(int version, const char* selector) {
  if (standin::systemVersion() < version) {
    standin::fault("-[NSApplication %s] is sent on macOS %d, which does not have it", selector,
                   standin::systemVersion());
  }
}

}  // namespace

@interface NSEvent (StandIn)
+ (NSEvent*)standInEventOfType:(NSEventType)type;
@end

@interface NSApplication (StandIn)
@property NSEvent* standInCurrentEvent;
@end

@implementation NSEvent {
  NSEventType type_;
}

+ (NSEvent*)standInEventOfType:(NSEventType)type {
  NSEvent* event = [[NSEvent alloc] init];
  event->type_ = type;
  return event;
}
- (NSEventType)type {
  return type_;
}

@end

@implementation NSApplication {
  NSEvent* current_;
}
@synthesize delegate;

+ (__kindof NSApplication*)sharedApplication {
  if (NSApp == nil) {
    NSApp = [[NSApplication alloc] init];
  }
  return NSApp;
}
- (NSEvent*)currentEvent {
  return current_;
}
- (NSEvent*)standInCurrentEvent {
  return current_;
}
- (void)setStandInCurrentEvent:(NSEvent*)event {
  current_ = event;
}
- (void)run {
  @autoreleasepool {
    if (self.delegate == nil) {
      standin::fault("the application runs without a delegate");
    }
    [self.delegate applicationDidFinishLaunching:notification()];
  }
  while (true) {
    @autoreleasepool {
      standin::MainRunLoop::run(standin::MainRunLoop::defaultMode, [] { return !events.empty(); });
      const Event next = events.front();
      events.pop_front();
      current_ = next.event;
      next.handle();
    }
  }
}
- (void)terminate:(id)__unused sender {
  if ([self.delegate respondsToSelector:@selector(applicationShouldTerminate:)]) {
    const NSApplicationTerminateReply reply = [self.delegate applicationShouldTerminate:self];
    if (reply == NSTerminateCancel) {
      return;
    }
    if (reply != NSTerminateNow) {
      standin::fault("a later answer to the question of ending is not played");
    }
  }
  [self.delegate applicationWillTerminate:notification()];
  current_ = nil;
  events.clear();
  standin::Dispatch::drainMainQueue();
  standin::drainAllPools();
  standin::requireBalance();
  std::exit(EXIT_SUCCESS);
}
- (void)activate {
  requireSystem(14, "activate");
  asked.emplace_back("activate");
}
- (void)activateIgnoringOtherApps:(BOOL)ignores {
  asked.emplace_back(ignores ? "activate ignoring others" : "activate");
}
- (void)yieldActivationToApplicationWithBundleIdentifier:(NSString*)identifier {
  requireSystem(14, "yieldActivationToApplicationWithBundleIdentifier:");
  asked.push_back("yield " + standin::textOf(identifier));
}

@end

namespace standin {

void postEvent(std::function<void()> handle) {
  events.push_back({nil, std::move(handle)});
  MainRunLoop::wake();
}

void postMouse(NSEventType type) {
  events.push_back(
      {[NSEvent standInEventOfType:type], [type] { [shownItem().button standInMouse:type]; }});
  MainRunLoop::wake();
}

void click(NSEventType type) {
  NSApplication* application = NSApplication.sharedApplication;
  application.standInCurrentEvent = [NSEvent standInEventOfType:type];
  [shownItem().button standInMouse:type];
  application.standInCurrentEvent = nil;
}

const std::vector<std::string>& activations() {
  return asked;
}

}  // namespace standin
