// SPDX-License-Identifier: MIT
//
// The workspace. Played: sleep and wake are announced at a centre of its own, and the machine
// sleeps once every observer has returned; an address is opened, and anything else refused.
#include "frameworks/AppKit/workspace.hpp"

#import <AppKit/AppKit.h>

#include "frameworks/Foundation/notifications.hpp"
#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"

extern "C" {
NSNotificationName NSWorkspaceWillSleepNotification = @"NSWorkspaceWillSleepNotification";
NSNotificationName NSWorkspaceDidWakeNotification = @"NSWorkspaceDidWakeNotification";
}

@implementation NSWorkspace {
  NSNotificationCenter* center_;
}

+ (NSWorkspace*)sharedWorkspace {
  static NSWorkspace* const only = [[NSWorkspace alloc] init];
  return only;
}
- (NSNotificationCenter*)notificationCenter {
  if (center_ == nil) {
    center_ = [[NSNotificationCenter alloc] init];
  }
  return center_;
}
- (BOOL)openURL:(NSURL*)url {
  standin::withMachine([&](standin::Machine& machine) {
    machine.openedAddresses.push_back(standin::textOf(url.absoluteString));
  });
  return YES;
}

@end

namespace standin {

void announceSleep() {
  post(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceWillSleepNotification);
}

void announceWake() {
  post(NSWorkspace.sharedWorkspace.notificationCenter, NSWorkspaceDidWakeNotification);
}

}  // namespace standin
