// SPDX-License-Identifier: MIT
//
// The agent on macOS: chooses the adapters and hands the thread to AppKit.
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/app_coordinator.hpp"
#include "app/macos/macos_application.hpp"
#include "app/macos/macos_diagnosis.hpp"
#include "platform/macos/app/appkit_status_item.hpp"
#include "platform/macos/app/appkit_text_engine.hpp"
#include "platform/macos/app/foreground_settings_window.hpp"
#include "platform/macos/app/single_agent.hpp"
#include "platform/macos/app/workspace_url_opener.hpp"
#include "platform/macos/settings/application_folders.hpp"
#include "runtime/termination_signals.hpp"
#include "settings/agent/settings_process.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

// What a person who started the program in a terminal, or reads the system's log, is told.
void say(const std::string& line) {
  std::fprintf(stderr, "vantora: %s\n", line.c_str());
}

// A start that is not the first: has the agent do what this one was started for.
int passOn() {
  if (SingleAgent::ask()) {
    say("já está em execução nesta sessão; o pedido de abertura foi passado adiante");
    return EXIT_SUCCESS;
  }
  say("já está em execução nesta sessão, mas não responde");
  return EXIT_FAILURE;
}

// Everything that lives as long as the program, in the order in which it is needed.
class Agent {
 public:
  explicit Agent(std::filesystem::path applicationSupport)
      : application_(std::move(applicationSupport), [] { [NSApp terminate:nil]; }) {
    AppParts parts = application_.parts(statusItem_, textEngine_);
    parts.urlOpener = &urlOpener_;
    parts.log = EventLog::fromEnvironment(say);
    parts.model->onSaveFailure = [](const std::string& message) { say(message); };
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
        .executable = bundledHelper("vantora-settings").string(),
        .rasterise = [this](const StatusImage& image,
                            double scale) { return rasterise(image, textEngine_, scale); },
        .codexExecutable = [&quota = *parts.codexQuota] { return quota.executableDescription(); },
        .claudeExecutable = [&quota = *parts.claudeQuota] { return quota.executableDescription(); },
    });
    window->onFailure = [](const std::string& message) { say(message); };
    return std::make_unique<ForegroundSettingsWindow>(std::move(window), settingsIdentifier);
  }

  // packaging/macos/Settings-Info.plist.in has the same.
  static constexpr const char* settingsIdentifier = "local.vantora.Vantora.settings";

  MacOSApplication application_;
  AppKitStatusItem statusItem_{application_.mainQueue(), application_.clock()};
  AppKitTextEngine textEngine_;
  WorkspaceUrlOpener urlOpener_;
  std::shared_ptr<AppCoordinator> coordinator_;
};

}  // namespace
}  // namespace vantora

@interface VantoraDelegate : NSObject <NSApplicationDelegate>
- (instancetype)initWithApplicationSupport:(std::filesystem::path)folder
                               singleAgent:(std::unique_ptr<vantora::SingleAgent>)single;
@end

@implementation VantoraDelegate {
  std::filesystem::path applicationSupport_;
  std::unique_ptr<vantora::SingleAgent> single_;
  std::unique_ptr<vantora::Agent> agent_;
}

- (instancetype)initWithApplicationSupport:(std::filesystem::path)folder
                               singleAgent:(std::unique_ptr<vantora::SingleAgent>)single {
  self = [super init];
  if (self != nil) {
    applicationSupport_ = std::move(folder);
    single_ = std::move(single);
  }
  return self;
}

- (void)applicationDidFinishLaunching:(NSNotification*)__unused notification {
  agent_ = std::make_unique<vantora::Agent>(applicationSupport_);
  __weak VantoraDelegate* weakSelf = self;
  single_->answer([weakSelf] { [weakSelf reopen]; });
}

- (BOOL)reopen {
  return agent_ != nullptr && agent_->reopen();
}

- (BOOL)applicationShouldHandleReopen:(NSApplication*)__unused sender
                    hasVisibleWindows:(BOOL)__unused hasVisibleWindows {
  return [self reopen];
}

// There is no window of ours to restore. Without an answer AppKit writes into the system's
// log at every start.
- (BOOL)applicationSupportsSecureRestorableState:(NSApplication*)__unused application {
  return YES;
}

- (void)applicationWillTerminate:(NSNotification*)__unused notification {
  // AppKit ends the process without returning to main: the children end here.
  agent_.reset();
  single_.reset();
}

@end

namespace {

// `--diagnose` is the only option: others are the system's, which it gives to every application.
std::optional<int> answerOnCommandLine(int argc, const char* const* argv) {
  const auto is = [&](int place, const char* option) {
    return place < argc && std::strcmp(argv[place], option) == 0;
  };
  if (!is(1, "--diagnose")) {
    return std::nullopt;
  }
  if (argc > 3 || (argc == 3 && !is(2, "--json"))) {
    vantora::say("--diagnose só aceita --json ao seu lado");
    return 2;
  }
  auto folder = vantora::applicationSupportFolder();
  if (!folder) {
    vantora::say("o macOS não informa a pasta Application Support");
    return EXIT_FAILURE;
  }
  vantora::MacOSApplication application(std::move(*folder),
                                        [] { CFRunLoopStop(CFRunLoopGetMain()); });
  return vantora::diagnose(application, {"vantora", argc == 3});
}

}  // namespace

int main(int argc, const char* const* argv) {
  vantora::ignoreBrokenPipes();
  @autoreleasepool {
    if (const auto status = answerOnCommandLine(argc, argv)) {
      return *status;
    }
    auto folder = vantora::applicationSupportFolder();
    if (!folder) {
      vantora::say("o macOS não informa a pasta Application Support");
      return EXIT_FAILURE;
    }
    auto single = std::make_unique<vantora::SingleAgent>(*folder / "Vantora");
    if (!single->isFirst()) {
      return vantora::passOn();
    }
    NSApplication* application = NSApplication.sharedApplication;
    // The application holds its delegate weakly.
    static VantoraDelegate* delegate =
        [[VantoraDelegate alloc] initWithApplicationSupport:std::move(*folder)
                                                singleAgent:std::move(single)];
    application.delegate = delegate;
    [application run];
  }
  return EXIT_SUCCESS;
}
