// SPDX-License-Identifier: MIT
//
// The status bar, 24 points high, and its items. Played: an item is there until it is removed.
#include "frameworks/AppKit/controls.hpp"
#include "objc/fault.hpp"

namespace {

std::vector<NSStatusItem*> items;

}  // namespace

@implementation NSStatusItem
@synthesize length, menu, button;

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    button = [[NSStatusBarButton alloc] init];
    button.standInItem = self;
  }
  return self;
}

@end

@implementation NSStatusBar

+ (NSStatusBar*)systemStatusBar {
  static NSStatusBar* const only = [[NSStatusBar alloc] init];
  return only;
}
- (CGFloat)thickness {
  return 24;
}
- (NSStatusItem*)statusItemWithLength:(CGFloat)length {
  NSStatusItem* item = [[NSStatusItem alloc] init];
  item.length = length;
  items.push_back(item);
  return item;
}
- (void)removeStatusItem:(NSStatusItem*)item {
  if (std::erase(items, item) == 0) {
    standin::fault("a status item is removed that is not in the bar");
  }
}

@end

namespace standin {

NSStatusItem* shownItem() {
  return items.empty() ? nil : items.back();
}
int statusItems() {
  return static_cast<int>(items.size());
}

}  // namespace standin
