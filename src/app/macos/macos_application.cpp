// SPDX-License-Identifier: MIT
#include "app/macos/macos_application.hpp"

#include <utility>

#include "app/quota_providers.hpp"
#include "platform/macos/app/workspace_power_events.hpp"
#include "platform/macos/readings/apple_smc.hpp"
#include "platform/macos/readings/mach_tick_counters.hpp"
#include "platform/macos/readings/sysctl_network_source.hpp"
#include "platform/macos/settings/application_folders.hpp"
#include "quota/claude/claude_executable_places.hpp"
#include "quota/codex/codex_executable_places.hpp"
#include "sampling/apple/sensor_collector.hpp"
#include "sampling/battery_collector.hpp"

namespace vantora {

MacOSApplication::MacOSApplication(std::filesystem::path applicationSupport,
                                   std::function<void()> end)
    : applicationSupport_(std::move(applicationSupport)),
      end_(std::move(end)),
      home_(homeFolder()),
      launcher_(mainLoop_.raw(), mainQueue_) {}

AppParts MacOSApplication::parts(StatusItem& statusItem, TextEngine& textEngine) {
  return {
      .mainQueue = mainQueue_,
      .clock = clock_,
      .statusItem = statusItem,
      .textEngine = textEngine,
      .model = std::make_unique<SettingsModel>(
          mainQueue_, fileWorker_, ConfigurationStore(applicationSupport_), loginItem_, defaults_),
      .sampling =
          SamplingCoordinator::create(samplingTimers_, mainQueue_, clock_, samplingSources()),
      .codexQuota = makeCodexQuotaProvider(conversationHost(), clock_, defaults_,
                                           CodexExecutablePlaces::onMacOS()),
      .claudeQuota = makeClaudeQuotaProvider(conversationHost(), clock_,
                                             ClaudeExecutablePlaces::onMacOS(home_)),
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
  return {mainQueue_, launcher_, (applicationSupport_ / "Vantora").string()};
}

}  // namespace vantora
