// SPDX-License-Identifier: MIT
#pragma once

#import <AppKit/AppKit.h>

#include <functional>
#include <string>
#include <vector>

namespace standin {

/// An event for the application's loop, which handles them one after the other, each in an
/// autorelease pool of its own.
void postMouse(NSEventType type);
void postEvent(std::function<void()> handle);

/// Handles an event of the mouse on the status item now, for a test without the application's
/// loop.
void click(NSEventType type);

/// What the application asked of activation, in order: "activate", "yield IDENTIFIER".
[[nodiscard]] const std::vector<std::string>& activations();

}  // namespace standin
