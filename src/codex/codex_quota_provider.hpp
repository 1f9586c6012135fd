// SPDX-License-Identifier: MIT
//
// Decides when the weekly Codex quota is read, runs one conversation at a time and turns
// its result into the state that is shown. Also runs the browser login on request.
//
// Lives on the main thread. Between two queries nothing exists but its timers.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "codex/codex_client.hpp"
#include "codex/weekly_quota_selector.hpp"
#include "model/configuration.hpp"
#include "model/quota_state.hpp"
#include "runtime/clock.hpp"
#include "runtime/query_schedule.hpp"
#include "runtime/retry_backoff.hpp"
#include "runtime/task_queue.hpp"

namespace vantora {

class CodexQuotaProvider {
 public:
  struct Ports {
    TaskQueue& mainQueue;  ///< Outlives the provider, as does the clock.
    const Clock& clock;
    CodexClientFactory makeClient;
    /// The executable to run as things are now (CodexExecutableResolver); nothing when
    /// there is none.
    std::function<std::optional<std::string>()> resolveExecutable;
    RandomFraction random = systemRandomFraction;
  };

  explicit CodexQuotaProvider(Ports ports);
  ~CodexQuotaProvider();
  CodexQuotaProvider(const CodexQuotaProvider&) = delete;
  CodexQuotaProvider& operator=(const CodexQuotaProvider&) = delete;

  /// Receives every state that is published.
  std::function<void(const CodexQuotaState&)> onState;
  /// Receives the login page that is to be opened in the browser.
  std::function<void(const std::string& url)> onLoginURL;

  [[nodiscard]] const CodexQuotaState& state() const { return state_; }

  /// The only way to start and stop the integration: on every change of the
  /// configuration, before sleep and after waking.
  void configure(const AppConfiguration& configuration, bool sleeping);

  /// Queries at once, unless a query runs or began less than 30 s ago.
  void manualRefresh();

  /// Begins the login in the browser. Offered to a logged-out CLI only; ignored in every
  /// other state.
  void connectInBrowser();

  /// The user chose another executable: begins afresh.
  void executableSelectionChanged();

  /// Stops everything and ends a running conversation. The state stays as it is.
  void shutdown() { stop(); }

  /// The path of the executable in use, or that there is none, for the settings window.
  [[nodiscard]] std::string executableDescription() const;

 private:
  void stop();
  void query(bool force);
  void converse(const std::string& executable, CodexClientMode mode,
                const QuerySchedule::Ticket& ticket);
  void finish(const CodexClientResult& result);
  void displayTick();

  // What each result does, while active.
  void accept(const codex_result::Quota& quota);
  void accept(const CodexQuotaReading& reading);
  void accept(const codex_result::Failure& failure);
  void accept(const codex_result::NeedsAuthentication& result);
  void accept(const codex_result::UnsupportedAccount& result);
  void accept(const codex_result::PermissionDenied& result);
  void accept(const codex_result::UnsupportedVersion& result);
  void accept(const codex_result::Cancelled& result);
  void transientFailure(const std::string& text);
  void refuse(CodexQuotaStatus status, std::string message);

  void clearValues();
  void showMissingExecutable();
  void show(CodexQuotaStatus status, std::string message);
  void publish() const;
  void scheduleDisplay();
  [[nodiscard]] Seconds interval() const;

  Ports ports_;
  QuerySchedule schedule_;
  CodexQuotaState state_;  // its settings are those of the last configuration
  MetricSet demand_;
  bool active_ = false;
  std::shared_ptr<CodexClient> client_;
  std::optional<WallTime> lastResetTriggered_;  // the reset that was queried for already
};

}  // namespace vantora
