// SPDX-License-Identifier: MIT
#include "platform/macos/app/workspace_url_opener.hpp"

#import <AppKit/AppKit.h>

#include "platform/macos/base/foundation_text.hpp"

namespace vantora {

void WorkspaceUrlOpener::open(const std::string& url) {
  NSURL* address = [NSURL URLWithString:stringOf(url)];
  if (address != nil) {
    [NSWorkspace.sharedWorkspace openURL:address];
  }
}

}  // namespace vantora
