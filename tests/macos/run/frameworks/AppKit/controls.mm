// SPDX-License-Identifier: MIT
//
// NSView, NSControl and the status bar's button. Played: a control sends its action for the
// events of its mask, at first for the left button's release alone, to a target that it holds
// weakly.
#include "frameworks/AppKit/controls.hpp"

#include <utility>

#include "frameworks/Foundation/values.hpp"
#include "objc/class_table.hpp"
#include "objc/fault.hpp"

extern "C" id objc_msgSend(id receiver, SEL selector, ...);

@implementation NSResponder
@end

@implementation NSView {
  NSString* toolTip_;
  NSString* label_;
  std::vector<std::string> labels_;
  int toolTipChanges_;
}

- (NSString*)toolTip {
  return toolTip_;
}
- (void)setToolTip:(NSString*)toolTip {
  toolTip_ = toolTip;
  ++toolTipChanges_;
}
- (int)standInToolTipChanges {
  return toolTipChanges_;
}
- (void)setAccessibilityLabel:(NSString*)label {
  label_ = label;
  if (label != nil && (labels_.empty() || labels_.back() != standin::textOf(label))) {
    labels_.push_back(standin::textOf(label));
  }
}
- (void)standInTakeLabels:(std::vector<std::string>&)labels {
  labels = std::exchange(labels_, {});
}
- (NSString*)standInLabel {
  return label_;
}

@end

@implementation NSControl {
 @protected
  NSEventMask mask_;
}
@synthesize target, action;

- (instancetype)init {
  self = [super init];
  if (self != nil) {
    mask_ = NSEventMaskLeftMouseUp;
  }
  return self;
}
- (NSInteger)sendActionOn:(NSEventMask)mask {
  const NSEventMask previous = mask_;
  mask_ = mask;
  return static_cast<NSInteger>(previous);
}
- (void)performClick:(id)__unused sender {
  standin::sendAction(self.action, self.target, self);
}

@end

@implementation NSButton {
  NSImage* image_;
  int imageChanges_;
}
@synthesize imagePosition;

- (NSImage*)image {
  return image_;
}
- (void)setImage:(NSImage*)image {
  image_ = image;
  ++imageChanges_;
}
- (int)standInImageChanges {
  return imageChanges_;
}

@end

@implementation NSStatusBarButton {
  __weak NSStatusItem* item_;
}

- (NSStatusItem*)standInItem {
  return item_;
}
- (void)setStandInItem:(NSStatusItem*)item {
  item_ = item;
}
// An item with a menu opens it.
- (void)performClick:(id)sender {
  NSMenu* menu = item_.menu;
  if (menu == nil) {
    [super performClick:sender];
  } else {
    standin::popUp(menu);
  }
}
- (void)standInMouse:(NSEventType)type {
  if (item_.menu != nil) {
    standin::popUp(item_.menu);
  } else if ((mask_ & (1ULL << type)) != 0) {
    standin::sendAction(self.action, self.target, self);
  }
}

@end

namespace standin {

void sendAction(SEL action, id target, id sender) {
  if (target == nil || action == nullptr) {
    return;
  }
  reinterpret_cast<void (*)(id, SEL, id)> (&objc_msgSend)(target, action, sender);
}

}  // namespace standin

__attribute__((constructor(103))) static void bindToTheMainThread() {
  for (Class each : {[NSResponder class],
                     [NSMenu class],
                     [NSMenuItem class],
                     [NSStatusBar class],
                     [NSStatusItem class]}) {
    standin::bindToMainThread((__bridge standin::Class*)each);
    standin::bindToMainThread(
        reinterpret_cast<standin::Class*>((__bridge standin::Object*)each)->isa);
  }
}
