// SPDX-License-Identifier: MIT
#include "app/app_coordinator.hpp"

#include <utility>

#include "app/shown_readings.hpp"
#include "model/version.hpp"
#include "status/metric_formatter.hpp"
#include "status/status_modules.hpp"

namespace vantora {
namespace {

// Calls `method` of the coordinator with whatever arrives, unless it is gone by then.
template <typename Owner, typename Method>
auto weakly(std::weak_ptr<Owner> weak, Method method) {
  return [weak = std::move(weak), method](auto&&... arguments) {
    if (const auto self = weak.lock()) {
      ((*self).*method)(std::forward<decltype(arguments)>(arguments)...);
    }
  };
}

// The sentence of a fresh value names the category of limits that it is of.
template <typename State>
QuotaReport quotaReport(const State& state, std::optional<Seconds> untilQuery, WallTime now) {
  QuotaReport report{std::string(rawText(state.status)), "", state.lastSuccess, std::nullopt};
  if (state.status != decltype(state.status)::ready) {
    report.message = state.message;
  }
  if (untilQuery) {
    report.nextQuery = now + std::chrono::duration_cast<WallTime::duration>(*untilQuery);
  }
  return report;
}

AppConfiguration withModulesFor(MetricSet metrics, AppConfiguration configuration) {
  const MetricSet demand = configuration.demand();
  for (const MetricID metric : metrics) {
    if (!demand.contains(metric)) {
      ModuleConfiguration& module = configuration.modules.emplace_back();
      module.enabled = true;
      module.top = metric;
      module.bottom = MetricID::none;
    }
  }
  return configuration;
}

}  // namespace

std::shared_ptr<AppCoordinator> AppCoordinator::create(AppParts parts) {
  return std::make_shared<AppCoordinator>(Token(), std::move(parts));
}

AppCoordinator::AppCoordinator(Token, AppParts parts)
    : parts_(std::move(parts)),
      launchedAtUptime_(parts_.clock.uptime()),
      redraw_(parts_.statusItem, parts_.textEngine) {}

void AppCoordinator::launch() {
  shown_ = withModulesFor(parts_.alwaysShown, parts_.model->configuration());
  observeStatusItem();
  observeModel();
  observeProviders();
  observeSampling();
  observePower();
  drawStatus();
  parts_.sampling->configure(shown_);
  configureProviders(/*sleeping=*/false);
}

void AppCoordinator::terminate() {
  parts_.powerEvents.reset();
  parts_.codexQuota->shutdown();
  parts_.claudeQuota->shutdown();
  if (parts_.settingsWindow != nullptr) {
    parts_.settingsWindow->close();
  }
}

bool AppCoordinator::reopen(std::string_view activationToken) {
  if (parts_.clock.uptime() - launchedAtUptime_ < reopenGrace) {
    return false;
  }
  showSettings(activationToken);
  return true;
}

AgentReport AppCoordinator::report() const {
  const WallTime now = parts_.clock.now();
  AgentReport report;
  report.version = programVersion;
  report.running = parts_.clock.uptime() - launchedAtUptime_;
  report.item = parts_.statusItem.report();
  for (const StatusModule& module : redraw_.presentation().modules) {
    report.shown.append(report.shown.empty() ? "" : " | ")
        .append(StatusModules::joinedLines(module));
  }
  report.isPaused = shown_.paused;
  report.notice = model().notice();
  for (const MetricID metric : shown_.demand()) {
    const auto producer = family(metric);
    if (producer != MetricFamily::codex && producer != MetricFamily::claude) {
      const MetricSample& sample = snapshot_[metric];
      report.readings.push_back(
          {metric, sample.quality, MetricFormatter::text(metric, snapshot_, now), sample.source});
    }
  }
  report.codex = quotaReport(snapshot_.codex, parts_.codexQuota->untilQuery(), now);
  report.claude = quotaReport(snapshot_.claude, parts_.claudeQuota->untilQuery(), now);
  return report;
}

void AppCoordinator::observeStatusItem() {
  StatusItemActions actions;
  if (parts_.settingsWindow != nullptr) {
    actions.openSettings = weakly(weak_from_this(), &AppCoordinator::showSettings);
  }
  actions.togglePause = weakly(weak_from_this(), &AppCoordinator::togglePause);
  actions.quit = parts_.quit;
  actions.isPaused = [weak = weak_from_this()] {
    const auto self = weak.lock();
    return self != nullptr && self->model().configuration().paused;
  };
  parts_.statusItem.setActions(std::move(actions));
}

void AppCoordinator::observeModel() {
  SettingsModel& model = *parts_.model;
  model.onConfigurationChange = weakly(weak_from_this(), &AppCoordinator::configurationChanged);
  // The model and the providers live and end with this coordinator.
  model.onQuotaRefresh = [this] { parts_.codexQuota->manualRefresh(); };
  model.onQuotaConnect = [this] { parts_.codexQuota->connectInBrowser(); };
  model.onCodexExecutableChange = [this] { parts_.codexQuota->executableSelectionChanged(); };
  model.onClaudeRefresh = [this] { parts_.claudeQuota->manualRefresh(); };
  model.onLinksWanted = [this] {
    parts_.sampling->listLinks(weakly(weak_from_this(), &AppCoordinator::linksListed));
  };
}

void AppCoordinator::observeProviders() {
  const std::weak_ptr<AppCoordinator> weak = weak_from_this();
  parts_.codexQuota->onState = [weak](const CodexQuotaState& state) {
    if (const auto self = weak.lock()) {
      self->parts_.log.queried("Codex", rawText(self->snapshot_.codex.status),
                               rawText(state.status));
      self->snapshot_.codex = state;
      self->snapshotChanged();
    }
  };
  parts_.codexQuota->onLoginURL = [weak](const std::string& url) {
    const auto self = weak.lock();
    if (self != nullptr && self->parts_.urlOpener != nullptr) {
      self->parts_.urlOpener->open(url);
    }
  };
  parts_.claudeQuota->onState = [weak](const ClaudeQuotaState& state) {
    if (const auto self = weak.lock()) {
      self->parts_.log.queried("Claude", rawText(self->snapshot_.claude.status),
                               rawText(state.status));
      self->snapshot_.claude = state;
      self->snapshotChanged();
    }
  };
}

void AppCoordinator::observeSampling() {
  parts_.sampling->onSnapshot = weakly(weak_from_this(), &AppCoordinator::sampled);
  parts_.sampling->isNews = [shown = ShownReadings(),
                             isWatched = isWatched_](const MetricSnapshot& snapshot) mutable {
    return shown.take(snapshot) || *isWatched;
  };
}

void AppCoordinator::observePower() {
  const std::weak_ptr<AppCoordinator> weak = weak_from_this();
  PowerEvents::Handlers handlers;
  handlers.onPowerSourceChange = [weak] {
    if (const auto self = weak.lock()) {
      self->parts_.sampling->refreshBattery();
    }
  };
  // Where a timer samples, it looks at the battery itself; a pass beside it would find no
  // tick elapsed and no rate.
  handlers.onBatteryDue = [weak] {
    const auto self = weak.lock();
    if (self != nullptr && !SamplingCoordinator::startsTimer(self->shown())) {
      self->parts_.sampling->refreshBattery();
    }
  };
  handlers.onWillSleep = weakly(weak, &AppCoordinator::willSleep);
  handlers.onDidWake = weakly(weak, &AppCoordinator::woke);
  parts_.powerEvents->start(std::move(handlers));
}

void AppCoordinator::configurationChanged(const AppConfiguration& edited) {
  const AppConfiguration before = std::exchange(shown_, withModulesFor(parts_.alwaysShown, edited));
  shown_.paused = isPausedHere_.value_or(shown_.paused);
  drawStatus();
  // Widths, fonts, gaps and quota settings never disturb the sampling timer.
  const bool isSamplingUnchanged =
      before.demand() == shown_.demand() && before.intervalSeconds == shown_.intervalSeconds &&
      before.networkInterface == shown_.networkInterface && before.paused == shown_.paused;
  if (!isSamplingUnchanged) {
    parts_.sampling->configure(shown_);
  }
  configureProviders(/*sleeping=*/false);
}

void AppCoordinator::sampled(MetricSnapshot snapshot) {
  parts_.log.sampled(snapshot_, snapshot);
  // Sampling never produces quota states.
  snapshot.codex = std::move(snapshot_.codex);
  snapshot.claude = std::move(snapshot_.claude);
  snapshot_ = std::move(snapshot);
  ++samplingRounds_;
  snapshotChanged();
}

void AppCoordinator::snapshotChanged() {
  const bool isInWindow = parts_.settingsWindow != nullptr && parts_.settingsWindow->isVisible();
  *isWatched_ = isInWindow || onUpdate;
  if (isInWindow) {
    parts_.model->setSnapshot(snapshot_);
  }
  if (redraw_.drawIfChanged(shown_, snapshot_, parts_.clock.now())) {
    statusDrawn();
  }
  if (onUpdate) {
    onUpdate();
  }
}

void AppCoordinator::configureProviders(bool sleeping) {
  parts_.codexQuota->configure(shown_, sleeping);
  parts_.claudeQuota->configure(shown_, sleeping);
}

void AppCoordinator::willSleep(SleepHold hold) {
  parts_.log.info("o computador vai dormir");
  // The system may sleep once no timer is left that a rate could come from; the hold is
  // let go of where it came from, on the main thread.
  parts_.sampling->prepareForSleep([&main = parts_.mainQueue, hold = std::move(hold)]() mutable {
    main.post([released = std::move(hold)] {});
  });
  configureProviders(/*sleeping=*/true);
}

void AppCoordinator::woke() {
  parts_.log.info("o computador acordou");
  parts_.sampling->resetAfterWake();
  configureProviders(/*sleeping=*/false);
}

void AppCoordinator::showSettings(std::string_view activationToken) {
  if (parts_.settingsWindow == nullptr) {
    return;
  }
  *isWatched_ = true;
  parts_.model->setSnapshot(snapshot_);
  parts_.model->refreshLoginStatus();
  parts_.settingsWindow->show(activationToken);
}

void AppCoordinator::linksListed(std::vector<NetworkLink> links) {
  parts_.model->setLinks(std::move(links));
}

void AppCoordinator::togglePause() {
  AppConfiguration configuration = parts_.model->configuration();
  configuration.paused = !configuration.paused;
  parts_.model->setConfiguration(std::move(configuration));
}

void AppCoordinator::togglePauseOfThisRun() {
  isPausedHere_ = !shown_.paused;
  configurationChanged(parts_.model->configuration());
}

void AppCoordinator::drawStatus() {
  redraw_.draw(shown_, snapshot_, parts_.clock.now());
  statusDrawn();
}

void AppCoordinator::statusDrawn() {
  if (parts_.log.writes(EventLog::Level::debug)) {
    parts_.log.debug("desenhado: " + redraw_.presentation().accessibilityText);
  }
  if (parts_.settingsWindow != nullptr) {
    parts_.settingsWindow->showStatus(redraw_.presentation());
  }
}

}  // namespace vantora
