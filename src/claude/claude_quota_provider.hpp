// SPDX-License-Identifier: MIT
//
// Decides when Claude Code is asked for the account's limits, runs one query at a time
// and turns its result into the state that is shown.
//
// Lives on the main thread. Between two queries nothing exists but its timers.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "claude/claude_client.hpp"
#include "claude/claude_usage_parser.hpp"
#include "model/configuration.hpp"
#include "model/quota_state.hpp"
#include "runtime/clock.hpp"
#include "runtime/query_schedule.hpp"
#include "runtime/retry_backoff.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

class ClaudeQuotaProvider {
 public:
  struct Ports {
    TaskQueue& mainQueue;  ///< Outlives the provider, as does the clock.
    const Clock& clock;
    ClaudeClientFactory makeClient;
    /// The executable to run as things are now (ClaudeExecutableResolver); nothing when
    /// there is none.
    std::function<std::optional<std::string>()> resolveExecutable;
    RandomFraction random = systemRandomFraction;
  };

  static constexpr MetricSet metrics{MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent};

  explicit ClaudeQuotaProvider(Ports ports);
  ~ClaudeQuotaProvider();
  ClaudeQuotaProvider(const ClaudeQuotaProvider&) = delete;
  ClaudeQuotaProvider& operator=(const ClaudeQuotaProvider&) = delete;

  /// Receives every state that is published. Set it before the first configure().
  std::function<void(const ClaudeQuotaState&)> onState;

  [[nodiscard]] const ClaudeQuotaState& state() const { return state_; }

  /// The only way to start and stop the integration: on every change of the
  /// configuration, before sleep and after waking.
  void configure(const AppConfiguration& configuration, bool sleeping);

  /// Queries at once, unless a query runs or began less than 30 s ago.
  void manualRefresh();

  /// Stops everything and ends a running query. The state stays as it is.
  void shutdown() { stop(); }

  /// The path of the executable in use, or that there is none, for the settings window.
  [[nodiscard]] std::string executableDescription() const;

 private:
  void stop();
  void query(bool force);
  void finish(const ClaudeClientResult& result);
  void displayTick();

  // What each result does, while active.
  void accept(const claude_result::Usage& usage);
  void accept(const claude_result::Failure& failure);
  void accept(const claude_result::NeedsAuthentication& result);
  void accept(const claude_result::UnsupportedVersion& result);
  void accept(const claude_result::Cancelled& result);
  void accept(const ClaudeUsageReading& reading);
  void accept(ClaudeUsageAbsence absence);
  void transientFailure(const std::string& text);
  void needsLogin();

  void clearValues();
  void show(ClaudeQuotaStatus status, std::string message);
  void publish() const;
  void scheduleDisplay();
  [[nodiscard]] Seconds interval() const;

  Ports ports_;
  QuerySchedule schedule_;
  ClaudeQuotaState state_;  // its settings are those of the last configuration
  MetricSet demand_;
  bool active_ = false;
  std::shared_ptr<ClaudeClient> client_;
  std::optional<WallTime> lastResetTriggered_;  // the reset that was queried for already
};

}  // namespace vantora
