// SPDX-License-Identifier: MIT
//
// Menus. Played: an open menu runs the run loop in a mode of its own; an entry is enabled
// when its target has its action; the action is sent once the menu has closed.
#include <algorithm>
#include <optional>

#include "dispatch/main_run_loop.hpp"
#include "frameworks/AppKit/controls.hpp"
#include "frameworks/Foundation/values.hpp"
#include "objc/fault.hpp"

@implementation NSMenuItem {
  NSString* title_;
  SEL action_;
}
@synthesize target, tag;

- (instancetype)initWithTitle:(NSString*)title action:(SEL)action {
  self = [super init];
  if (self != nil) {
    title_ = title;
    action_ = action;
  }
  return self;
}
- (NSString*)standInTitle {
  return title_;
}
- (BOOL)standInIsEnabled {
  return self.target != nil && action_ != nullptr && [self.target respondsToSelector:action_];
}
- (void)standInChoose {
  standin::sendAction(action_, self.target, self);
}

@end

@implementation NSMenu {
 @public
  std::vector<NSMenuItem*> items_;
}

- (NSMenuItem*)addItemWithTitle:(NSString*)title
                         action:(SEL)action
                  keyEquivalent:(NSString*)keyEquivalent {
  if (keyEquivalent.length != 0) {
    standin::fault("an entry of the menu has a key");
  }
  NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:title action:action];
  items_.push_back(item);
  return item;
}

@end

namespace {

NSMenu* open = nil;
NSMenuItem* chosen = nil;
bool isOver = false;

}  // namespace

namespace standin {

void popUp(NSMenu* menu) {
  if (open != nil) {
    fault("a menu is opened while another is open");
  }
  open = menu;
  chosen = nil;
  isOver = false;
  MainRunLoop::run(MainRunLoop::trackingMode, [] { return isOver; });
  open = nil;
  NSMenuItem* item = chosen;
  chosen = nil;
  [item standInChoose];
}

bool isMenuOpen() {
  return open != nil && !isOver;
}

std::vector<MenuEntry> openMenu() {
  std::vector<MenuEntry> entries;
  if (open != nil) {
    for (NSMenuItem* each : open->items_) {
      entries.push_back({textOf(each.standInTitle), static_cast<bool>(each.standInIsEnabled)});
    }
  }
  return entries;
}

bool chooseFromMenu(const std::string& title) {
  if (!isMenuOpen()) {
    return false;
  }
  if (!title.empty()) {
    for (NSMenuItem* each : open->items_) {
      if (textOf(each.standInTitle) == title && each.standInIsEnabled) {
        chosen = each;
      }
    }
    if (chosen == nil) {
      return false;
    }
  }
  isOver = true;
  MainRunLoop::wake();
  return true;
}

}  // namespace standin
