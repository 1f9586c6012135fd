// SPDX-License-Identifier: MIT
#include "app/linux/linux_application.hpp"

#include <cstdlib>
#include <system_error>
#include <utility>

#include "app/quota_providers.hpp"
#include "claude/claude_executable_resolver.hpp"
#include "codex/codex_executable_resolver.hpp"
#include "platform/linux/linux_battery_source.hpp"
#include "platform/linux/linux_power_events.hpp"
#include "platform/linux/linux_sensor_source.hpp"
#include "platform/linux/proc_stat.hpp"
#include "platform/linux/rtnetlink_source.hpp"
#include "platform/linux/xdg_folders.hpp"

namespace vantora {
namespace {

std::string homeFolder() {
  std::string home = XdgFolders::home().value_or(std::filesystem::path()).string();
  while (home.ends_with('/')) {
    home.pop_back();
  }
  return home;
}

// Batteries and sensors are read through drivers that may take their time over it: an
// embedded controller tens of milliseconds, a broken one for ever. They are kept off the
// main loop. Where the machine has none, as virtual machines have not, a pass only copies
// numbers that the kernel holds, and a thread of its own would only be one more wake-up.
bool hasDriversThatMayBlock() {
  for (const char* folder : {"/sys/class/hwmon", "/sys/class/power_supply"}) {
    std::error_code error;
    if (!std::filesystem::is_empty(folder, error) && !error) {
      return true;
    }
  }
  return false;
}

SamplingSources samplingSources(const Clock& clock) {
  return {std::make_unique<ProcStatTicks>(), std::make_unique<RtnetlinkSource>(),
          std::make_unique<LinuxBatterySource>(clock), std::make_unique<LinuxSensorSource>(clock)};
}

}  // namespace

LinuxApplication::LinuxApplication(std::filesystem::path configHome)
    : configHome_(std::move(configHome)),
      home_(homeFolder()),
      launcher_(loop_.raw(), loop_.queue()),
      defaults_(configHome_),
      loginItem_(AutostartLoginItem::placesOf(ownExecutable().value_or("vantora"))) {
  if (hasDriversThatMayBlock()) {
    samplingThread_.emplace(std::string(SamplingCoordinator::queueLabel));
  }
}

TaskQueue& LinuxApplication::samplingQueue() {
  return samplingThread_ ? samplingThread_->queue() : loop_.queue();
}

AppParts LinuxApplication::parts(StatusItem& statusItem, TextEngine& textEngine) {
  UvTaskQueue& main = loop_.queue();
  return {
      .mainQueue = main,
      .clock = clock_,
      .statusItem = statusItem,
      .textEngine = textEngine,
      .model = std::make_unique<SettingsModel>(main, ConfigurationStore(configHome_), loginItem_,
                                               defaults_),
      .sampling =
          SamplingCoordinator::create(samplingQueue(), main, clock_, samplingSources(clock_)),
      .quota = makeCodexQuotaProvider(conversationHost(), clock_, defaults_,
                                      CodexExecutableResolver::placesOnLinux(home_)),
      .claudeQuota = makeClaudeQuotaProvider(conversationHost(), clock_,
                                             ClaudeExecutableResolver::placesOnLinux(home_)),
      .powerEvents = std::make_unique<LinuxPowerEvents>(
          loop_.raw(), main, systemBusAddress(std::getenv("DBUS_SYSTEM_BUS_ADDRESS"))),
      .settingsWindow = nullptr,
      .urlOpener = nullptr,
      .quit = [this] { loop_.stop(); },
  };
}

ConversationHost LinuxApplication::conversationHost() {
  // Children and pipes never block, so that a queue of their own would only cost a thread.
  return {loop_.queue(), loop_.queue(), launcher_, (configHome_ / "Vantora").string()};
}

}  // namespace vantora
