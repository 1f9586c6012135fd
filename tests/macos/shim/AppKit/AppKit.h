// SPDX-License-Identifier: MIT
//
// Our own declarations of the AppKit names that Vantora uses; see
// CoreFoundation/CoreFoundation.h beside.
#pragma once

#import <CoreGraphics/CoreGraphics.h>
#import <Foundation/Foundation.h>

#define APPKIT_EXTERN extern "C"

NS_ASSUME_NONNULL_BEGIN

@class NSApplication, NSMenu, NSStringDrawingContext;

// Fonts, colours and text.

typedef CGFloat NSFontWeight;
APPKIT_EXTERN const NSFontWeight NSFontWeightMedium;
APPKIT_EXTERN NSAttributedStringKey const NSFontAttributeName;
APPKIT_EXTERN NSAttributedStringKey const NSForegroundColorAttributeName;

@interface NSFont : NSObject <NSCopying>
+ (NSFont*)systemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)size
                               weight:(NSFontWeight)weight API_AVAILABLE(macos(10.15));
@property(readonly) CGFloat ascender;
@property(readonly) CGFloat descender;
@end

@interface NSColor : NSObject <NSCopying>
@property(class, strong, readonly) NSColor* blackColor;
@end

typedef NS_OPTIONS(NSInteger, NSStringDrawingOptions) {
  NSStringDrawingUsesLineFragmentOrigin = 1 << 0
};

@interface NSAttributedString (NSStringDrawing)
- (NSSize)size;
@end
@interface NSAttributedString (NSExtendedStringDrawing)
- (void)drawWithRect:(NSRect)rect
             options:(NSStringDrawingOptions)options
             context:(nullable NSStringDrawingContext*)context API_AVAILABLE(macos(10.11));
@end

@interface NSGraphicsContext : NSObject
+ (NSGraphicsContext*)graphicsContextWithCGContext:(CGContextRef)context
                                           flipped:(BOOL)flipped API_AVAILABLE(macos(10.10));
@property(class, nullable, strong) NSGraphicsContext* currentContext;
+ (void)saveGraphicsState;
+ (void)restoreGraphicsState;
@end

@interface NSImage : NSObject <NSCopying>
+ (NSImage*)imageWithSize:(NSSize)size
                  flipped:(BOOL)flipped
           drawingHandler:(BOOL (^)(NSRect dstRect))drawingHandler;
// The property is named with a word that C++ keeps: only its accessors can be used.
- (void)setTemplate:(BOOL)isTemplate;
@end

// Events, menus and the status item.

typedef NS_ENUM(NSUInteger, NSEventType) {
  NSEventTypeLeftMouseUp = 2,
  NSEventTypeRightMouseUp = 4
};
typedef NS_OPTIONS(unsigned long long, NSEventMask) {
  NSEventMaskLeftMouseUp = 1ULL << NSEventTypeLeftMouseUp,
  NSEventMaskRightMouseUp = 1ULL << NSEventTypeRightMouseUp
};

@interface NSEvent : NSObject <NSCopying>
@property(readonly) NSEventType type;
@end

@interface NSMenuItem : NSObject <NSCopying>
@property(nullable, weak) id target;
@property NSInteger tag;
@end

@interface NSMenu : NSObject <NSCopying>
- (NSMenuItem*)addItemWithTitle:(NSString*)title
                         action:(nullable SEL)action
                  keyEquivalent:(NSString*)keyEquivalent;
@end

@interface NSResponder : NSObject
@end

@interface NSView : NSResponder
@property(nullable, copy) NSString* toolTip;
- (void)setAccessibilityLabel:(nullable NSString*)label;
@end

typedef NS_ENUM(NSUInteger, NSCellImagePosition) { NSImageOnly = 1 };

@interface NSControl : NSView
@property(nullable, weak) id target;
@property(nullable) SEL action;
- (NSInteger)sendActionOn:(NSEventMask)mask;
- (void)performClick:(nullable id)sender;
@end

@interface NSButton : NSControl
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@end

@interface NSStatusBarButton : NSButton
@end

static const CGFloat NSVariableStatusItemLength = -1.0;

@interface NSStatusItem : NSObject
@property CGFloat length;
@property(nullable, strong) NSMenu* menu;
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
@property(readonly) CGFloat thickness;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

// The application.

typedef NS_ENUM(NSUInteger, NSApplicationTerminateReply) {
  NSTerminateCancel = 0,
  NSTerminateNow = 1,
  NSTerminateLater = 2
};

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (void)applicationWillTerminate:(NSNotification*)notification;
- (NSApplicationTerminateReply)applicationShouldTerminate:(NSApplication*)sender;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender
                    hasVisibleWindows:(BOOL)hasVisibleWindows;
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)application
    API_AVAILABLE(macos(12.0));
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
@property(nullable, readonly, strong) NSEvent* currentEvent;
- (void)run;
- (void)terminate:(nullable id)sender;
- (void)activate API_AVAILABLE(macos(14.0));
- (void)activateIgnoringOtherApps:(BOOL)ignoresOtherApps;
- (void)yieldActivationToApplicationWithBundleIdentifier:(NSString*)bundleIdentifier
    API_AVAILABLE(macos(14.0));
@end
APPKIT_EXTERN __kindof NSApplication* _Null_unspecified NSApp;

APPKIT_EXTERN NSNotificationName NSWorkspaceWillSleepNotification;
APPKIT_EXTERN NSNotificationName NSWorkspaceDidWakeNotification;

@interface NSWorkspace : NSObject
@property(class, readonly, strong) NSWorkspace* sharedWorkspace;
@property(readonly, strong) NSNotificationCenter* notificationCenter;
- (BOOL)openURL:(NSURL*)url;
@end

NS_ASSUME_NONNULL_END
