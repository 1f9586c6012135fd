// SPDX-License-Identifier: MIT
//
// The spine of the program: owns the settings model, the sampling and the two quota
// providers, keeps the current snapshot, has the status item drawn again (StatusRedraw
// decides), and passes on clicks, sleep, wake and changes of the power source.
//
// Everything here runs on the main thread.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "app/agent_report.hpp"
#include "app/event_log.hpp"
#include "app/status_redraw.hpp"
#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "ports/power_events.hpp"
#include "ports/settings_window.hpp"
#include "ports/status_item.hpp"
#include "ports/url_opener.hpp"
#include "quota/claude/claude_quota_provider.hpp"
#include "quota/codex/codex_quota_provider.hpp"
#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"
#include "sampling/sampling_coordinator.hpp"
#include "settings/settings_model.hpp"
#include "status/text_engine.hpp"

namespace vantora {

/// What the main chooses for the coordinator. Everything referred to must outlive it.
struct AppParts {
  TaskQueue& mainQueue;
  const Clock& clock;
  StatusItem& statusItem;
  TextEngine& textEngine;
  std::unique_ptr<SettingsModel> model;
  std::shared_ptr<SamplingCoordinator> sampling;
  std::unique_ptr<CodexQuotaProvider> codexQuota;
  std::unique_ptr<ClaudeQuotaProvider> claudeQuota;
  std::unique_ptr<PowerEvents> powerEvents;
  /// Null in a program that has no window. It shows the model and the providers above.
  std::unique_ptr<SettingsWindow> settingsWindow;
  /// Null in a program that opens no pages.
  UrlOpener* urlOpener = nullptr;
  /// Ends the program's main loop; empty where the user cannot ask for it.
  std::function<void()> quit;
  /// Metrics that are read and drawn although no module of the user's shows them.
  MetricSet alwaysShown = {};
  EventLog log = EventLog();
};

class AppCoordinator final : public std::enable_shared_from_this<AppCoordinator> {
 public:
  /// A request to open the program again is ignored for this long after its start, so
  /// that a login, or starting it twice, opens no window.
  static constexpr Seconds reopenGrace{3.0};

  [[nodiscard]] static std::shared_ptr<AppCoordinator> create(AppParts parts);

  /// Installs every callback, draws once and starts what the configuration asks for.
  /// Once, when the main loop is about to run.
  void launch();

  /// Stops listening to the system and ends the child processes. A save that waits for
  /// its delay is not made. Once, when the main loop has ended.
  void terminate();

  /// The user started the program again. Returns whether that opened the settings.
  bool reopen(std::string_view activationToken = {});

  /// Pauses or resumes whatever the configuration says, which stays as it is: for a program
  /// that shows the configuration and does not write it. Not before launch().
  void togglePauseOfThisRun();

  [[nodiscard]] SettingsModel& model() { return *parts_.model; }
  [[nodiscard]] const SettingsModel& model() const { return *parts_.model; }

  /// What is shown: the user's configuration, with a module for each metric that is always
  /// shown.
  [[nodiscard]] const AppConfiguration& shown() const { return shown_; }

  /// The clock of everything that it holds.
  [[nodiscard]] const Clock& clock() const { return parts_.clock; }

  /// The latest readings with the latest quota states.
  [[nodiscard]] const MetricSnapshot& snapshot() const { return snapshot_; }

  /// How many snapshots the sampling has handed over so far.
  [[nodiscard]] int samplingRounds() const { return samplingRounds_; }

  /// What is known here alone, as things are now, for a person who looks for a fault.
  [[nodiscard]] AgentReport report() const;

  /// After new readings or quota states were taken over and, where that changed a text,
  /// drawn. Without it the readings of a tick are taken over only where they can be told from
  /// those before, or while the window shows them. Set it before launch().
  std::function<void()> onUpdate;

 private:
  struct Token {};

 public:
  /// For create() alone.
  AppCoordinator(Token token, AppParts parts);

 private:
  void observeStatusItem();
  void observeModel();
  void observeProviders();
  void observeSampling();
  void observePower();

  void configurationChanged(const AppConfiguration& edited);
  void sampled(MetricSnapshot snapshot);
  void snapshotChanged();
  void configureProviders(bool sleeping);
  void willSleep(SleepHold hold);
  void woke();
  void showSettings(std::string_view activationToken);
  void linksListed(std::vector<NetworkLink> links);
  void togglePause();
  void drawStatus();
  void statusDrawn();

  AppParts parts_;
  const Seconds launchedAtUptime_;
  AppConfiguration shown_;            // since launch()
  std::optional<bool> isPausedHere_;  // instead of what the configuration says
  MetricSnapshot snapshot_;
  int samplingRounds_ = 0;
  /// Whether every tick counts, whatever is drawn. Shared with the sampling queue.
  const std::shared_ptr<std::atomic<bool>> isWatched_ = std::make_shared<std::atomic<bool>>(false);
  StatusRedraw redraw_;
};

}  // namespace vantora
