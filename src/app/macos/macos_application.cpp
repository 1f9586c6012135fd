// SPDX-License-Identifier: MIT
#include "app/macos/macos_application.hpp"

#include <utility>

#include "app/quota_providers.hpp"
#include "claude/claude_executable_resolver.hpp"
#include "codex/codex_executable_resolver.hpp"
#include "platform/macos/apple_smc.hpp"
#include "platform/macos/application_folders.hpp"
#include "platform/macos/mach_tick_counters.hpp"
#include "platform/macos/sysctl_network_source.hpp"
#include "platform/macos/thread_priority.hpp"
#include "platform/macos/workspace_power_events.hpp"
#include "sampling/battery_collector.hpp"
#include "sampling/sensor_collector.hpp"

namespace vantora {

MacOSApplication::MacOSApplication(std::filesystem::path applicationSupport,
                                   std::function<void()> end)
    : applicationSupport_(std::move(applicationSupport)),
      end_(std::move(end)),
      home_(homeFolder()),
      samplingThread_(std::string(SamplingCoordinator::queueLabel)),
      launcher_(mainLoop_.raw(), mainQueue_) {
  samplingThread_.queue().post(&useUtilityPriorityForThisThread);
}

AppParts MacOSApplication::parts(StatusItem& statusItem, TextEngine& textEngine) {
  return {
      .mainQueue = mainQueue_,
      .clock = clock_,
      .statusItem = statusItem,
      .textEngine = textEngine,
      .model = std::make_unique<SettingsModel>(mainQueue_, ConfigurationStore(applicationSupport_),
                                               loginItem_, defaults_),
      .sampling = SamplingCoordinator::create(samplingThread_.queue(), mainQueue_, clock_,
                                              samplingSources()),
      .quota = makeCodexQuotaProvider(conversationHost(), clock_, defaults_,
                                      CodexExecutableResolver::placesOnMacOS()),
      .claudeQuota = makeClaudeQuotaProvider(conversationHost(), clock_,
                                             ClaudeExecutableResolver::placesOnMacOS(home_)),
      .powerEvents = std::make_unique<WorkspacePowerEvents>(mainQueue_),
      .settingsWindow = nullptr,
      .urlOpener = nullptr,
      .quit = [this] { mainQueue_.post(end_); },
  };
}

SamplingSources MacOSApplication::samplingSources() {
  return {std::make_unique<MachTickCounters>(), std::make_unique<SysctlNetworkSource>(),
          std::make_unique<DescribedBattery>(powerSources_, clock_),
          std::make_unique<SensorCollector>(&openAppleSMC, clock_)};
}

ConversationHost MacOSApplication::conversationHost() {
  // Children and pipes never block, so that a queue of their own would only cost a thread.
  return {mainQueue_, mainQueue_, launcher_, (applicationSupport_ / "Vantora").string()};
}

}  // namespace vantora
