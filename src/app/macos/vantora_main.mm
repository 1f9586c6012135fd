// SPDX-License-Identifier: MIT
//
// The agent on macOS: chooses the adapters and hands the thread to AppKit.
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "app/app_coordinator.hpp"
#include "app/macos/macos_application.hpp"
#include "platform/macos/appkit_status_item.hpp"
#include "platform/macos/appkit_text_engine.hpp"
#include "platform/macos/application_folders.hpp"
#include "platform/macos/workspace_url_opener.hpp"
#include "runtime/termination_signals.hpp"

namespace vantora {
namespace {

// Everything that lives as long as the program, in the order in which it is needed.
class Agent {
 public:
  explicit Agent(std::filesystem::path applicationSupport)
      : application_(std::move(applicationSupport), [] { [NSApp terminate:nil]; }) {
    AppParts parts = application_.parts(statusItem_, textEngine_);
    parts.urlOpener = &urlOpener_;
    coordinator_ = AppCoordinator::create(std::move(parts));
    coordinator_->launch();
  }
  ~Agent() { coordinator_->terminate(); }
  Agent(const Agent&) = delete;
  Agent& operator=(const Agent&) = delete;

  bool reopen() { return coordinator_->reopen(); }

 private:
  MacOSApplication application_;
  AppKitStatusItem statusItem_;
  AppKitTextEngine textEngine_;
  WorkspaceUrlOpener urlOpener_;
  std::shared_ptr<AppCoordinator> coordinator_;
};

}  // namespace
}  // namespace vantora

@interface VantoraDelegate : NSObject <NSApplicationDelegate>
@end

@implementation VantoraDelegate {
  std::unique_ptr<vantora::Agent> agent_;
}

- (void)applicationDidFinishLaunching:(NSNotification*)__unused notification {
  auto folder = vantora::applicationSupportFolder();
  if (!folder) {
    std::fputs("vantora: o macOS não informa a pasta Application Support\n", stderr);
    std::exit(EXIT_FAILURE);
  }
  agent_ = std::make_unique<vantora::Agent>(std::move(*folder));
}

- (BOOL)applicationShouldHandleReopen:(id)__unused sender
                    hasVisibleWindows:(BOOL)__unused hasVisibleWindows {
  return agent_ != nullptr && agent_->reopen();
}

- (void)applicationWillTerminate:(NSNotification*)__unused notification {
  // AppKit ends the process without returning to main: the children end here.
  agent_.reset();
}

@end

int main() {
  vantora::ignoreBrokenPipes();
  @autoreleasepool {
    NSApplication* application = NSApplication.sharedApplication;
    // The application holds its delegate weakly.
    static VantoraDelegate* delegate = [[VantoraDelegate alloc] init];
    application.delegate = delegate;
    [application run];
  }
  return EXIT_SUCCESS;
}
