// SPDX-License-Identifier: MIT
#include "platform/macos/app/appkit_status_item.hpp"

#import <AppKit/AppKit.h>

#include <optional>
#include <string>
#include <utility>

#include "platform/macos/app/appkit_text.hpp"
#include "platform/macos/base/foundation_text.hpp"

/// Whom the button and the menu send their actions to; controls hold it weakly.
@interface VantoraStatusTarget : NSObject
- (instancetype)initWithItem:(NSStatusItem*)item;
- (void)setActions:(vantora::StatusItemActions)actions;
- (void)statusClicked:(id)sender;
- (void)openSettings:(id)sender;
- (void)togglePause:(id)sender;
- (void)quit:(id)sender;
@end

@implementation VantoraStatusTarget {
  NSStatusItem* item_;
  vantora::StatusItemActions actions_;
}

- (instancetype)initWithItem:(NSStatusItem*)item {
  self = [super init];
  if (self != nil) {
    item_ = item;
  }
  return self;
}

- (void)setActions:(vantora::StatusItemActions)actions {
  actions_ = std::move(actions);
}

- (void)statusClicked:(id)__unused sender {
  // No event: the click came from elsewhere, as from VoiceOver.
  NSEvent* event = NSApp.currentEvent;
  if (event != nil && event.type == NSEventTypeRightMouseUp) {
    [self popUpMenu];
  } else {
    [self openSettings:nil];
  }
}

- (void)popUpMenu {
  NSMenu* menu = [[NSMenu alloc] init];
  if (actions_.openSettings) {
    [self addItem:@"Configurações…" action:@selector(openSettings:) to:menu];
  }
  if (actions_.togglePause) {
    const bool isPaused = actions_.isPaused && actions_.isPaused();
    [self addItem:isPaused ? @"Retomar" : @"Pausar" action:@selector(togglePause:) to:menu];
  }
  if (actions_.quit) {
    [self addItem:@"Sair" action:@selector(quit:) to:menu];
  }
  // An item with a menu opens it on every click. So it has one only while this click is
  // answered: performClick returns when the menu has closed.
  item_.menu = menu;
  [item_.button performClick:nil];
  item_.menu = nil;
}

- (void)addItem:(NSString*)title action:(SEL)action to:(NSMenu*)menu {
  NSMenuItem* item = [menu addItemWithTitle:title action:action keyEquivalent:@""];
  item.target = self;
}

- (void)openSettings:(id)__unused sender {
  if (actions_.openSettings) {
    actions_.openSettings({});
  }
}

- (void)togglePause:(id)__unused sender {
  if (actions_.togglePause) {
    actions_.togglePause();
  }
}

- (void)quit:(id)__unused sender {
  if (actions_.quit) {
    actions_.quit();
  }
}

@end

namespace vantora {
namespace {

// What the button adds around its picture.
constexpr double buttonMargin = 6;

}  // namespace

struct AppKitStatusItem::Item {
  NSStatusItem* item;
  VantoraStatusTarget* target;
  std::string toolTip;                // what it is to say
  std::string shownToolTip;           // what it says
  std::optional<Seconds> toolTipSet;  // when it began to
  TimerHandle toolTipDue;             // while the two differ
};

AppKitStatusItem::AppKitStatusItem(TaskQueue& mainQueue, const Clock& clock)
    : mainQueue_(mainQueue), clock_(clock) {
  NSStatusItem* item =
      [NSStatusBar.systemStatusBar statusItemWithLength:NSVariableStatusItemLength];
  VantoraStatusTarget* target = [[VantoraStatusTarget alloc] initWithItem:item];
  NSStatusBarButton* button = item.button;
  button.target = target;
  button.action = @selector(statusClicked:);
  // A button sends its action for the left button alone unless it is told otherwise.
  [button sendActionOn:NSEventMaskLeftMouseUp | NSEventMaskRightMouseUp];
  item_ = std::make_unique<Item>(Item{item, target, {}, {}, {}, {}});
}

AppKitStatusItem::~AppKitStatusItem() {
  [NSStatusBar.systemStatusBar removeStatusItem:item_->item];
}

double AppKitStatusItem::thickness() const {
  return NSStatusBar.systemStatusBar.thickness;
}

void AppKitStatusItem::show(const StatusPresentation& presentation) {
  NSStatusItem* item = item_->item;
  NSStatusBarButton* button = item.button;
  NSString* description = stringOf(presentation.accessibilityText);
  item.length = presentation.width + buttonMargin;
  button.image = AppKitText::templateImage(presentation.image);
  button.imagePosition = NSImageOnly;
  [button setAccessibilityLabel:description];
  item_->toolTip = presentation.accessibilityText;
  setToolTip();
}

void AppKitStatusItem::setToolTip() {
  if (item_->toolTip == item_->shownToolTip) {
    item_->toolTipDue.reset();
    return;
  }
  const Seconds now = clock_.uptime();
  const Seconds left = item_->toolTipSet ? *item_->toolTipSet + toolTipInterval - now : Seconds{0};
  if (left > Seconds{0}) {
    if (item_->toolTipDue == nullptr) {
      item_->toolTipDue = mainQueue_.runAfter(left, /*leeway=*/Seconds{1}, [this] {
        const TimerHandle passed = std::move(item_->toolTipDue);
        setToolTip();
      });
    }
    return;
  }
  item_->shownToolTip = item_->toolTip;
  item_->toolTipSet = now;
  item_->item.button.toolTip = stringOf(item_->toolTip);
}

void AppKitStatusItem::setActions(StatusItemActions actions) {
  [item_->target setActions:std::move(actions)];
}

}  // namespace vantora
