// SPDX-License-Identifier: MIT
//
// A whole application over fakes and virtual time.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <initializer_list>
#include <memory>
#include <utility>

#include "app/app_coordinator.hpp"
#include "model/configuration_codec.hpp"
#include "support/fake_settings_ports.hpp"

#include "support/fake_app_ports.hpp"
#include "support/fake_network_source.hpp"
#include "support/fake_power_sources.hpp"
#include "support/fake_quota_clients.hpp"
#include "support/fake_text_engine.hpp"
#include "support/fake_tick_counters.hpp"
#include "support/temporary_folder.hpp"
#include "support/virtual_time.hpp"
#include "support/virtual_worker.hpp"

namespace vantora::test {

/// A configuration of these modules at one second.
inline AppConfiguration showing(std::initializer_list<std::pair<MetricID, MetricID>> modules) {
  AppConfiguration configuration;
  configuration.modules.clear();
  for (const auto& [top, bottom] : modules) {
    configuration.modules.emplace_back();
    configuration.modules.back().top = top;
    configuration.modules.back().bottom = bottom;
  }
  configuration.intervalSeconds = 1;
  return configuration;
}

struct AppWorld {
  /// Makes the coordinator over a stored configuration; the caller launches it.
  void make(const AppConfiguration& configuration, StatusItem& item) {
    std::filesystem::create_directories(folder / "Vantora");
    writeBytes(folder / "Vantora/configuration.json", *ConfigurationCodec::encode(configuration));
    auto fakeTicks = std::make_unique<FakeTickCounters>();
    ticks = fakeTicks.get();
    auto fakeBattery = std::make_unique<FakeBatterySource>();
    battery = fakeBattery.get();
    SamplingSources sources{std::move(fakeTicks), std::make_unique<FakeNetworkSource>(),
                            std::move(fakeBattery), std::make_unique<FakeSensorSource>()};
    auto fakeWindow = std::make_unique<FakeSettingsWindow>();
    window = fakeWindow.get();
    coordinator = AppCoordinator::create(
        {*main, time, item, engine,
         std::make_unique<SettingsModel>(*main, worker, ConfigurationStore(folder.path()),
                                         loginItem, defaults),
         SamplingCoordinator::create(*sampling, *main, time, std::move(sources)),
         std::make_unique<CodexQuotaProvider>(
             CodexQuotaProvider::Ports{*main, time, clients.codexFactory(),
                                       [] {
                                         return AssistantExecutable{"/bin/codex", "/bin/codex"};
                                       },
                                       [] { return 0.0; }}),
         std::make_unique<ClaudeQuotaProvider>(
             ClaudeQuotaProvider::Ports{*main, time, clients.claudeFactory(),
                                        [] {
                                          return AssistantExecutable{"/bin/claude", "/bin/claude"};
                                        },
                                        [] { return 0.0; }}),
         std::make_unique<FakePowerEvents>(power), hasWindow ? std::move(fakeWindow) : nullptr,
         hasWindow ? &urlOpener : nullptr, [this] { ++quits; }, alwaysShown,
         EventLog(EventLog::Level::info,
                  [this](const std::string& line) { events.push_back(line); })});
  }

  void change(const std::function<void(AppConfiguration&)>& edit) {
    AppConfiguration configuration = coordinator->model().configuration();
    edit(configuration);
    coordinator->model().setConfiguration(std::move(configuration));
    time.runPosted();
  }

  /// The usage that the next reading finds since the last one.
  void setUsage(std::uint64_t percent) {
    active += percent;
    idle += 100 - percent;
    ticks->set(active, idle);
  }

  VirtualTime time;
  std::unique_ptr<VirtualQueue> main = time.makeQueue();
  std::unique_ptr<VirtualQueue> sampling = time.makeQueue();
  VirtualWorker worker{*main};
  TemporaryFolder folder;
  FakeLoginItem loginItem;
  FakeUserDefaults defaults;
  FakeTextEngine engine;
  FakeQuotaClients clients;
  FakeSettingsWindow* window = nullptr;
  FakeUrlOpener urlOpener;
  PowerEvents::Handlers power;
  bool hasWindow = true;
  MetricSet alwaysShown;
  std::vector<std::string> events;
  int quits = 0;
  FakeTickCounters* ticks = nullptr;
  FakeBatterySource* battery = nullptr;
  std::uint64_t active = 1000;
  std::uint64_t idle = 9000;
  std::shared_ptr<AppCoordinator> coordinator;
};

}  // namespace vantora::test
