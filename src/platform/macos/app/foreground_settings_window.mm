// SPDX-License-Identifier: MIT
#include "platform/macos/app/foreground_settings_window.hpp"

#import <AppKit/AppKit.h>

#include <utility>

#include "platform/macos/base/foundation_text.hpp"

namespace vantora {

ForegroundSettingsWindow::ForegroundSettingsWindow(std::unique_ptr<SettingsWindow> window,
                                                   std::string identifier)
    : window_(std::move(window)), identifier_(std::move(identifier)) {}

void ForegroundSettingsWindow::show(std::string_view activationToken) {
  if (@available(macOS 14, *)) {
    [NSApp activate];
    [NSApp yieldActivationToApplicationWithBundleIdentifier:stringOf(identifier_)];
  } else {
    // There a program may activate itself, and the helper does.
    [NSApp activateIgnoringOtherApps:YES];
  }
  window_->show(activationToken);
}

void ForegroundSettingsWindow::showStatus(const StatusPresentation& presentation) {
  window_->showStatus(presentation);
}

}  // namespace vantora
