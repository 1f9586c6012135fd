// SPDX-License-Identifier: MIT
//
// The life that every quota provider shares: it runs while the configuration wants it, asks one
// client at a time, drops late results, retries with a growing wait, asks again after a reset and
// publishes its state when a shown text changes. What an answer means, the texts and the rules in
// which providers differ are the derived class's.
//
// Lives on the main thread. Between two queries only its timers exist.
#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "model/configuration.hpp"
#include "quota/assistant_executable.hpp"
#include "quota/query_schedule.hpp"
#include "quota/quota_client.hpp"
#include "quota/retry_backoff.hpp"
#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

/// `State` is the published state with status, message, lastSuccess and settings; `Result` a
/// variant of quota_result's types and the client's own; `ClientFactory` makes the client.
template <typename State, typename Result, typename ClientFactory>
class QuotaProvider {
 public:
  using Status = decltype(State::status);
  using Settings = decltype(State::settings);

  struct Ports {
    TaskQueue& mainQueue;  ///< Outlives the provider, as does the clock.
    const Clock& clock;
    ClientFactory makeClient;
    /// The executable to run as things are now; nothing when there is none.
    std::function<std::optional<AssistantExecutable>()> resolveExecutable;
    RandomFraction random = systemRandomFraction;
  };

  virtual ~QuotaProvider() { stop(); }
  QuotaProvider(const QuotaProvider&) = delete;
  QuotaProvider& operator=(const QuotaProvider&) = delete;

  /// Receives every state that is published. Set it before the first configure().
  std::function<void(const State&)> onState;

  [[nodiscard]] const State& state() const { return state_; }

  /// The only way to start and stop the integration: on every change of the configuration, before
  /// sleep and after waking.
  void configure(const AppConfiguration& configuration, bool sleeping) {
    const Settings settings = (configuration.*rules_.settings).value_or(Settings{});
    const Settings previous = std::exchange(state_.settings, settings);
    demand_ = configuration.demand();
    const bool isWanted = settings.enabled && demand_.intersects(rules_.metrics) &&
                          !configuration.paused && !sleeping;
    if (!isWanted) {
      stop();
      state_ = {};
      state_.settings = settings;
      publish();
    } else if (!isActive_) {
      start();
    } else if (mustQueryAgain(previous)) {
      query(true);
    } else {
      publish();
      scheduleDisplay();
      if (settings.intervalMinutes != previous.intervalMinutes && !isConversing() &&
          (rules_.newIntervalStartsQueries || schedule_.isQueryScheduled())) {
        schedule_.scheduleQueryAtInterval(interval());
      }
    }
  }

  /// Queries at once, unless a query runs or began less than QuerySchedule::minQueryInterval ago.
  void manualRefresh() {
    if (isActive_ && !isConversing() && schedule_.minIntervalElapsed()) {
      schedule_.resetFailures();
      query(true);
    }
  }

  /// Stops everything and cancels a running query. The state stays as it is.
  void shutdown() { stop(); }

  /// The time until the next query begins by itself; nothing while none is due: switched off,
  /// asking, or waiting for the user.
  [[nodiscard]] std::optional<Seconds> untilQuery() const { return schedule_.untilQuery(); }

  /// The path of the executable in use, or that there is none, for the settings window.
  [[nodiscard]] std::string executableDescription() const {
    const auto executable = ports_.resolveExecutable();
    return executable ? executable->path : rules_.executableNotFound;
  }

 protected:
  /// The differences between providers that are values.
  struct Rules {
    MetricSet metrics;  ///< The provider runs while one of them is shown.
    std::optional<Settings> AppConfiguration::*settings;
    QuerySchedule::Leeways leeways = {};
    const char* queryMessage;            ///< While a query runs whose value is awaited.
    const char* startMessage = nullptr;  ///< Before the first query; null: queryMessage.
    const char* executableNotFound;      ///< In place of the executable's path.
    /// Whether a new interval schedules a query even while none is scheduled.
    bool newIntervalStartsQueries = false;
    /// Whether the query after a reset is shown; otherwise the values stay on screen.
    bool showsQueryAfterReset = false;
    /// Whether a stop forgets for which reset a query was made.
    bool stopForgetsReset = false;
  };

  QuotaProvider(Ports ports, const Rules& rules)
      : ports_(std::move(ports)),
        rules_(rules),
        schedule_(
            ports_.mainQueue, ports_.clock, ports_.random, rules.leeways, [this] { query(false); },
            [this] { displayTick(); }) {}

  /// A client that reads the quota with `executable`.
  [[nodiscard]] virtual std::shared_ptr<QuotaClient> makeReader(
      const AssistantExecutable& executable, std::function<void(const Result&)> completion) = 0;
  /// Handles a result, while active: std::visit over overloads of take().
  virtual void accept(const Result& result) = 0;
  /// Shows that no executable was found, and schedules the next look if there is to be one.
  virtual void showMissingExecutable() = 0;
  /// The latest shown reset that is not later than `now`.
  [[nodiscard]] virtual std::optional<WallTime> passedReset(WallTime now) const = 0;
  /// The time until a shown text changes by itself.
  [[nodiscard]] virtual std::optional<Seconds> nextVisibleChange(WallTime now) const = 0;
  /// Whether new settings need another answer. state() has them already.
  [[nodiscard]] virtual bool mustQueryAgain(const Settings& /*previous*/) const { return false; }

  void take(const quota_result::Failure& failure) { retryAfter(failure.text); }
  void take(const quota_result::Cancelled& /*result*/) {}

  /// Shows a failure that may pass, with `text` as its reason; values stay while they are
  /// presentable.
  void retryAfter(const std::string& text) {
    show(state_.lastSuccess ? Status::stale : Status::error, text + " Nova tentativa com atraso.");
    scheduleDisplay();
    schedule_.scheduleRetry(interval());
  }

  void start() {
    isActive_ = true;
    show(Status::connecting,
         rules_.startMessage != nullptr ? rules_.startMessage : rules_.queryMessage);
    query(false);
  }

  /// As start(), from a state that has forgotten everything but the settings. The message of that
  /// state is seen only until the query replaces it.
  void restart() {
    stop();
    isActive_ = true;
    State fresh;
    fresh.settings = state_.settings;
    fresh.status = Status::connecting;
    state_ = std::move(fresh);
    publish();
    query(false);
  }

  void stop() {
    schedule_.stop();
    isActive_ = false;
    if (client_ != nullptr) {
      client_->cancel();
      client_.reset();
    }
    if (rules_.stopForgetsReset) {
      queriedReset_.reset();
    }
  }

  /// `force` shows the query even where an earlier value is on screen.
  void query(bool force) {
    if (!isActive_ || isConversing()) {
      return;
    }
    const auto executable = ports_.resolveExecutable();
    if (!executable) {
      showMissingExecutable();
      return;
    }
    const QuerySchedule::Ticket ticket = schedule_.beginQuery();
    if (force || !state_.lastSuccess) {
      show(Status::connecting, rules_.queryMessage);
    }
    converse(makeReader(*executable, completionFor(ticket)));
  }

  void converse(std::shared_ptr<QuotaClient> client) {
    client_ = std::move(client);
    client_->start();
  }

  /// The completion of a client; it does nothing once the ticket is void.
  [[nodiscard]] std::function<void(const Result&)> completionFor(
      const QuerySchedule::Ticket& ticket) {
    return [this, ticket](const Result& result) {
      if (ticket.isCurrent()) {
        // The client holds the callback that is running: it is released at the very end.
        const std::shared_ptr<QuotaClient> finished = std::exchange(client_, nullptr);
        accept(result);
      }
    };
  }

  void show(Status status, const std::string& message) {
    state_.status = status;
    state_.message = message;
    publish();
  }

  void publish() const {
    if (onState) {
      onState(state_);
    }
  }

  void scheduleDisplay() { schedule_.scheduleDisplay(nextVisibleChange(ports_.clock.now())); }

  /// A reading with other resets than those shown: the next one that passes counts again.
  void forgetQueriedReset() { queriedReset_.reset(); }

  [[nodiscard]] bool isActive() const { return isActive_; }
  [[nodiscard]] bool isConversing() const { return client_ != nullptr; }
  [[nodiscard]] MetricSet demand() const { return demand_; }
  [[nodiscard]] const Ports& ports() const { return ports_; }
  [[nodiscard]] QuerySchedule& schedule() { return schedule_; }
  [[nodiscard]] State& mutableState() { return state_; }
  [[nodiscard]] Seconds interval() const {
    return std::chrono::minutes{state_.settings.intervalMinutes};
  }

 private:
  void displayTick() {
    const std::optional<WallTime> reset = passedReset(ports_.clock.now());
    if (reset && reset != queriedReset_ && schedule_.minIntervalElapsed() && !isConversing()) {
      queriedReset_ = reset;
      query(rules_.showsQueryAfterReset);
    }
    publish();
    scheduleDisplay();
  }

  const Ports ports_;
  const Rules rules_;
  QuerySchedule schedule_;
  State state_;  // its settings are those of the last configuration
  MetricSet demand_;
  bool isActive_ = false;
  std::shared_ptr<QuotaClient> client_;
  std::optional<WallTime> queriedReset_;  // the reset for which a query was made
};

}  // namespace vantora
