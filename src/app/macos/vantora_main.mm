// SPDX-License-Identifier: MIT
//
// The agent on macOS: chooses the adapters and hands the thread to AppKit.
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <utility>

#include "app/app_coordinator.hpp"
#include "app/macos/macos_application.hpp"
#include "platform/macos/appkit_status_item.hpp"
#include "platform/macos/appkit_text_engine.hpp"
#include "platform/macos/application_folders.hpp"
#include "platform/macos/workspace_url_opener.hpp"
#include "runtime/termination_signals.hpp"
#include "settings/agent/settings_process.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

// What a person who started the program in a terminal, or reads the system's log, is told.
void say(const std::string& line) {
  std::fprintf(stderr, "vantora: %s\n", line.c_str());
}

// Everything that lives as long as the program, in the order in which it is needed.
class Agent {
 public:
  explicit Agent(std::filesystem::path applicationSupport)
      : application_(std::move(applicationSupport), [] { [NSApp terminate:nil]; }) {
    AppParts parts = application_.parts(statusItem_, textEngine_);
    parts.urlOpener = &urlOpener_;
    parts.settingsWindow = settingsWindow(parts);
    coordinator_ = AppCoordinator::create(std::move(parts));
    coordinator_->launch();
  }
  ~Agent() { coordinator_->terminate(); }
  Agent(const Agent&) = delete;
  Agent& operator=(const Agent&) = delete;

  bool reopen() { return coordinator_->reopen(); }

 private:
  std::unique_ptr<SettingsWindow> settingsWindow(const AppParts& parts) {
    auto window = std::make_unique<SettingsProcess>(SettingsProcess::Parts{
        .queue = application_.mainQueue(),
        .clock = application_.clock(),
        .launcher = application_.launcher(),
        .model = *parts.model,
        .executable = bundledProgram("vantora-settings").string(),
        .rasterise = [this](const StatusImage& image,
                            double scale) { return rasterise(image, textEngine_, scale); },
        .codexExecutable = [&quota = *parts.quota] { return quota.executableDescription(); },
        .claudeExecutable = [&quota = *parts.claudeQuota] { return quota.executableDescription(); },
    });
    window->onFailure = [](const std::string& message) { say(message); };
    return window;
  }

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
    vantora::say("o macOS não informa a pasta Application Support");
    std::exit(EXIT_FAILURE);
  }
  agent_ = std::make_unique<vantora::Agent>(std::move(*folder));
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)__unused sender
                    hasVisibleWindows:(BOOL)__unused hasVisibleWindows {
  return agent_ != nullptr && agent_->reopen();
}

// There is no window of ours to restore. Without an answer AppKit writes into the system's
// log at every start.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)__unused application {
  return YES;
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
