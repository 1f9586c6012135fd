// SPDX-License-Identifier: MIT
//
// What lies behind AppKit's controls and menus, for the stand-ins and for tests.
#pragma once

#import <AppKit/AppKit.h>

#include <string>
#include <vector>

@interface NSView (StandIn)
@property(readonly) NSString* standInLabel;
/// Every label since this was called the last time.
- (void)standInTakeLabels:(std::vector<std::string>&)labels;
@property(readonly) int standInToolTipChanges;
@end

@interface NSButton (StandIn)
@property(readonly) int standInImageChanges;
@end

@interface NSStatusBarButton (StandIn)
@property(weak) NSStatusItem* standInItem;
/// Sends the action for an event that the mask asks for.
- (void)standInMouse:(NSEventType)type;
@end

@interface NSMenuItem (StandIn)
- (instancetype)initWithTitle:(NSString*)title action:(SEL)action;
@property(readonly) NSString* standInTitle;
/// As AppKit enables the items of a menu by itself: when the target has the action.
@property(readonly) BOOL standInIsEnabled;
- (void)standInChoose;
@end

namespace standin {

/// How a person uses an open menu.
struct MenuEntry {
  std::string title;
  bool isEnabled = false;
};
/// The entries of the menu that is open; nothing when none is.
[[nodiscard]] bool isMenuOpen();
[[nodiscard]] std::vector<MenuEntry> openMenu();
/// Chooses an entry by its title, or closes the menu with an empty one. False when there is no
/// such entry or it is not enabled.
bool chooseFromMenu(const std::string& title);

/// Opens the menu and returns when it has closed, after the chosen entry's action.
void popUp(NSMenu* menu);

/// The status item in the bar, nil when there is none.
[[nodiscard]] NSStatusItem* shownItem();
[[nodiscard]] int statusItems();

/// Sends `action` to `target`, as controls do.
void sendAction(SEL action, id target, id sender);

}  // namespace standin
