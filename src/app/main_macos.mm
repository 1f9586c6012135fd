// SPDX-License-Identifier: MIT
//
// The resident agent on macOS: chooses the adapters and hands the thread to AppKit.
#import <AppKit/AppKit.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "app/app_coordinator.hpp"
#include "platform/macos/app_service_login_item.hpp"
#include "platform/macos/appkit_status_item.hpp"
#include "platform/macos/appkit_text_engine.hpp"
#include "platform/macos/apple_smc.hpp"
#include "platform/macos/application_folders.hpp"
#include "platform/macos/cf_user_defaults.hpp"
#include "platform/macos/dispatch_main_queue.hpp"
#include "platform/macos/embedded_uv_loop.hpp"
#include "platform/macos/io_power_sources.hpp"
#include "platform/macos/mach_tick_counters.hpp"
#include "platform/macos/sysctl_network_source.hpp"
#include "platform/macos/thread_priority.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/termination_signals.hpp"
#include "runtime/uv_loop.hpp"
#include "sampling/battery_collector.hpp"
#include "sampling/sensor_collector.hpp"

namespace vantora {
namespace {

// Everything that lives as long as the program, in the order in which it is needed.
class Agent {
 public:
  explicit Agent(const std::filesystem::path& applicationSupport)
      : coordinator_(AppCoordinator::create(
            {.clock = clock_,
             .statusItem = statusItem_,
             .textEngine = textEngine_,
             .model = std::make_unique<SettingsModel>(
                 mainQueue_, ConfigurationStore(applicationSupport), loginItem_, userDefaults_),
             .sampling = SamplingCoordinator::create(samplingThread_.queue(), mainQueue_, clock_,
                                                     sources())})) {
    samplingThread_.queue().post(&useUtilityPriorityForThisThread);
  }

  void launch() { coordinator_->launch(); }

 private:
  static void terminate() { [NSApp terminate:nil]; }

  SamplingSources sources() {
    return {.ticks = std::make_unique<MachTickCounters>(),
            .network = std::make_unique<SysctlNetworkSource>(),
            .battery = std::make_unique<DescribedBattery>(powerSources_, clock_),
            .sensors = std::make_unique<SensorCollector>(&openAppleSMC, clock_)};
  }

  SystemClock clock_;
  DispatchMainQueue mainQueue_;
  EmbeddedUvLoop mainLoop_;
  // Posted: the end destroys the loop that the signal came through.
  TerminationSignals signals_{mainLoop_.raw(), [this] { mainQueue_.post(&terminate); }};
  IOPowerSources powerSources_;
  UvQueueThread samplingThread_{std::string(SamplingCoordinator::queueLabel)};
  AppServiceLoginItem loginItem_;
  CFUserDefaults userDefaults_;
  AppKitStatusItem statusItem_;
  AppKitTextEngine textEngine_;
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
  const auto folder = vantora::applicationSupportFolder();
  if (!folder) {
    std::fputs("Vantora: o macOS não informa a pasta Application Support.\n", stderr);
    std::exit(EXIT_FAILURE);
  }
  agent_ = std::make_unique<vantora::Agent>(*folder);
  agent_->launch();
}

- (void)applicationWillTerminate:(NSNotification*)__unused notification {
  // AppKit ends the process without leaving main: what must not outlive it goes here.
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
