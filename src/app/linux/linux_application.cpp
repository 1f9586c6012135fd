// SPDX-License-Identifier: MIT
#include "app/linux/linux_application.hpp"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <utility>

#include "app/linux/first_configuration.hpp"
#include "app/quota_providers.hpp"
#include "platform/linux/battery/linux_battery_source.hpp"
#include "platform/linux/cpu/proc_stat.hpp"
#include "platform/linux/desktop/xdg_folders.hpp"
#include "platform/linux/network/rtnetlink_source.hpp"
#include "platform/linux/power/linux_power_events.hpp"
#include "platform/linux/sensors/linux_sensor_source.hpp"
#include "quota/claude/claude_executable_places.hpp"
#include "quota/codex/codex_executable_places.hpp"
#include "sampling/driver_sources.hpp"

namespace vantora {
namespace {

std::string homeFolder() {
  std::string home = XdgFolders::home().value_or(std::filesystem::path()).string();
  while (home.ends_with('/')) {
    home.pop_back();
  }
  return home;
}

}  // namespace

LinuxApplication::LinuxApplication(std::filesystem::path configHome)
    : configHome_(std::move(configHome)),
      home_(homeFolder()),
      defaults_(configHome_),
      loginItem_(AutostartLoginItem::placesOf(ownExecutable().value_or("vantora"))) {
  launcher_.emplace(loop_.raw(), loop_.queue());
}

SamplingSources LinuxApplication::samplingSources(DriverCalls& calls) const {
  return {std::make_unique<ProcStatTicks>(), std::make_unique<RtnetlinkSource>(),
          std::make_unique<DriverBattery>(std::make_shared<LinuxBatterySource>(clock_), calls,
                                          clock_, "Linux power_supply · a bateria não responde"),
          std::make_unique<DriverSensors>(std::make_shared<LinuxSensorSource>(clock_), calls,
                                          clock_, "Linux hwmon · os sensores não respondem")};
}

AppParts LinuxApplication::parts(StatusItem& statusItem, TextEngine& textEngine) {
  UvTaskQueue& main = loop_.queue();
  DriverQueue& sampling =
      samplingQueue_.emplace(loop_.raw(), std::string(SamplingCoordinator::queueLabel));
  return {
      .mainQueue = main,
      .clock = clock_,
      .statusItem = statusItem,
      .textEngine = textEngine,
      .model = std::make_unique<SettingsModel>(main, fileWorker_, configurationStore(), loginItem_,
                                               defaults_),
      .sampling = SamplingCoordinator::create(sampling, main, clock_, samplingSources(sampling)),
      .codexQuota = makeCodexQuotaProvider(conversationHost(), clock_, defaults_,
                                           CodexExecutablePlaces::onLinux(home_)),
      .claudeQuota = makeClaudeQuotaProvider(conversationHost(), clock_,
                                             ClaudeExecutablePlaces::onLinux(home_)),
      .powerEvents = std::make_unique<LinuxPowerEvents>(
          loop_.raw(), main, systemBusAddress(std::getenv("DBUS_SYSTEM_BUS_ADDRESS"))),
      .settingsWindow = nullptr,
      .urlOpener = nullptr,
      .quit = [this] { loop_.stop(); },
  };
}

LinuxApplication::Insides LinuxApplication::insides() {
  return {loop_,          clock_,        *launcher_,  defaults_,   loginItem_, linkThread_,
          batteryThread_, sensorThread_, fileWorker_, configHome_, home_};
}

ConfigurationStore LinuxApplication::configurationStore() const {
  return ConfigurationStore(configHome_, [] { return firstConfiguration(absentMetrics()); });
}

int LinuxApplication::end(int status) {
  constexpr std::chrono::seconds endTimeout{1};
  launcher_.reset();
  const auto deadline = std::chrono::steady_clock::now() + endTimeout;
  // A save first: it is what a second can still bring to an end.
  const bool isSaved = fileWorker_.endBy(deadline);
  if (isSaved && endSamplingBy(deadline) && linkThread_.endBy(deadline) &&
      batteryThread_.endBy(deadline) && sensorThread_.endBy(deadline)) {
    return status;
  }
  std::fflush(nullptr);
  _exit(status);
}

bool LinuxApplication::endSamplingBy(std::chrono::steady_clock::time_point deadline) {
  if (samplingQueue_) {
    samplingQueue_->stop();
    if (!samplingQueue_->waitUntil(deadline)) {
      return false;
    }
    samplingQueue_.reset();
  }
  return true;
}

ConversationHost LinuxApplication::conversationHost() {
  return {loop_.queue(), *launcher_, (configHome_ / "Vantora").string()};
}

}  // namespace vantora
