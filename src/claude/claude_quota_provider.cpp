// SPDX-License-Identifier: MIT
#include "claude/claude_quota_provider.hpp"

#include <algorithm>
#include <utility>

#include "claude/claude_quota_formatter.hpp"

namespace vantora {
namespace {

constexpr Seconds leastWaitForExecutable{600};
constexpr Seconds leastWaitForLogin{600};
constexpr Seconds leastWaitForUpdate{1800};

constexpr const char* queryingMessage = "Consultando os limites pelo Claude Code.";

}  // namespace

ClaudeQuotaProvider::ClaudeQuotaProvider(Ports ports)
    : ports_(std::move(ports)),
      schedule_(
          ports_.mainQueue, ports_.clock, ports_.random,
          {.query = Seconds{2}, .display = Seconds{1}}, [this] { query(false); },
          [this] { displayTick(); }) {}

ClaudeQuotaProvider::~ClaudeQuotaProvider() {
  stop();
}

void ClaudeQuotaProvider::configure(const AppConfiguration& configuration, bool sleeping) {
  const ClaudeQuotaSettings settings = configuration.claudeSettings.value_or(ClaudeQuotaSettings{});
  const ClaudeQuotaSettings previous = std::exchange(state_.settings, settings);
  demand_ = configuration.demand();
  const bool isWanted =
      settings.enabled && demand_.intersects(metrics) && !configuration.paused && !sleeping;
  if (!isWanted) {
    stop();
    state_ = {};
    state_.settings = settings;
    publish();
    return;
  }
  if (!active_) {
    active_ = true;
    show(ClaudeQuotaStatus::connecting, queryingMessage);
    query(false);
    return;
  }
  publish();
  scheduleDisplay();
  if (settings.intervalMinutes != previous.intervalMinutes && client_ == nullptr &&
      schedule_.isQueryScheduled()) {
    schedule_.scheduleQueryAtInterval(interval());
  }
}

void ClaudeQuotaProvider::manualRefresh() {
  if (active_ && client_ == nullptr && schedule_.isLeastDistancePassed()) {
    schedule_.resetFailures();
    query(true);
  }
}

std::string ClaudeQuotaProvider::executableDescription() const {
  return ports_.resolveExecutable().value_or("Claude Code (claude) não encontrado");
}

void ClaudeQuotaProvider::stop() {
  schedule_.stop();
  active_ = false;
  if (client_ != nullptr) {
    client_->cancel();
    client_.reset();
  }
  lastResetTriggered_.reset();
}

void ClaudeQuotaProvider::query(bool force) {
  if (!active_ || client_ != nullptr) {
    return;
  }
  const std::optional<std::string> executable = ports_.resolveExecutable();
  if (!executable) {
    clearValues();
    show(ClaudeQuotaStatus::dependencyMissing,
         "Claude Code (claude) não encontrado. Instale o CLI oficial para ler os limites.");
    schedule_.scheduleQuery(std::max(leastWaitForExecutable, interval()));
    return;
  }
  const QuerySchedule::Ticket ticket = schedule_.beginQuery();
  // A routine refresh leaves what is shown alone.
  if (force || !state_.lastSuccess) {
    show(ClaudeQuotaStatus::connecting, queryingMessage);
  }
  client_ = ports_.makeClient(*executable, [this, ticket](const ClaudeClientResult& result) {
    if (ticket.isCurrent()) {
      finish(result);
    }
  });
  client_->start();
}

void ClaudeQuotaProvider::finish(const ClaudeClientResult& result) {
  // The client holds the callback that is running: it goes at the very end.
  const std::shared_ptr<ClaudeClient> finished = std::exchange(client_, nullptr);
  std::visit([this](const auto& content) { accept(content); }, result);
}

void ClaudeQuotaProvider::accept(const claude_result::Usage& usage) {
  const std::optional<ClaudeUsageAnswer> answer = ClaudeUsageParser::parseUsageResponse(usage.json);
  if (!answer) {
    transientFailure("Resposta de uso inválida.");
    return;
  }
  schedule_.resetFailures();
  std::visit([this](const auto& content) { accept(content); }, *answer);
}

void ClaudeQuotaProvider::accept(const ClaudeUsageReading& reading) {
  if (reading.weeklyResetAt != state_.weeklyResetAt ||
      reading.sessionResetAt != state_.sessionResetAt) {
    lastResetTriggered_.reset();
  }
  state_.weeklyUsed = reading.weeklyUsed;
  state_.weeklyResetAt = reading.weeklyResetAt;
  state_.sessionUsed = reading.sessionUsed;
  state_.sessionResetAt = reading.sessionResetAt;
  state_.lastSuccess = ports_.clock.now();
  show(ClaudeQuotaStatus::ready,
       reading.overUsed() ? "O serviço informou uso acima de 100%."
                          : "Limites do Claude (semanal e 5 horas) consultados com sucesso.");
  scheduleDisplay();
  schedule_.scheduleQuery(interval());
}

void ClaudeQuotaProvider::accept(ClaudeUsageAbsence absence) {
  switch (absence) {
    case ClaudeUsageAbsence::planLimitsUnavailable:
      needsLogin();
      return;
    case ClaudeUsageAbsence::noWindows:
      clearValues();
      show(ClaudeQuotaStatus::limitsUnavailable,
           "O Claude Code não recebeu as janelas semanal e de 5 horas desta conta.");
      schedule_.scheduleQuery(interval());
      return;
  }
}

void ClaudeQuotaProvider::accept(const claude_result::Failure& failure) {
  transientFailure(failure.text);
}

void ClaudeQuotaProvider::accept(const claude_result::NeedsAuthentication& /*result*/) {
  needsLogin();
}

void ClaudeQuotaProvider::accept(const claude_result::UnsupportedVersion& /*result*/) {
  clearValues();
  show(ClaudeQuotaStatus::unsupportedVersion,
       "Esta versão do Claude Code não oferece a consulta de uso. Atualize com claude update.");
  schedule_.scheduleQuery(std::max(leastWaitForUpdate, interval()));
}

void ClaudeQuotaProvider::accept(const claude_result::Cancelled& /*result*/) {}

void ClaudeQuotaProvider::transientFailure(const std::string& text) {
  show(state_.lastSuccess ? ClaudeQuotaStatus::stale : ClaudeQuotaStatus::error,
       text + " Nova tentativa com atraso.");
  scheduleDisplay();
  schedule_.scheduleRetry(interval());
}

void ClaudeQuotaProvider::needsLogin() {
  clearValues();
  show(ClaudeQuotaStatus::needsAuthentication,
       "O Claude Code deste Mac não tem login de assinatura Claude. No Terminal, rode claude e use "
       "/login.");
  schedule_.scheduleQuery(std::max(leastWaitForLogin, interval()));
}

void ClaudeQuotaProvider::displayTick() {
  const WallTime now = ports_.clock.now();
  std::optional<WallTime> latestReset;
  for (const auto& resetAt : {state_.weeklyResetAt, state_.sessionResetAt}) {
    if (resetAt && *resetAt <= now) {
      latestReset = std::max(latestReset.value_or(*resetAt), *resetAt);
    }
  }
  if (latestReset && latestReset != lastResetTriggered_ && schedule_.isLeastDistancePassed() &&
      client_ == nullptr) {
    lastResetTriggered_ = latestReset;
    query(false);
  }
  publish();
  scheduleDisplay();
}

void ClaudeQuotaProvider::clearValues() {
  state_.weeklyUsed.reset();
  state_.weeklyResetAt.reset();
  state_.sessionUsed.reset();
  state_.sessionResetAt.reset();
  state_.lastSuccess.reset();
  schedule_.scheduleDisplay(std::nullopt);
}

void ClaudeQuotaProvider::show(ClaudeQuotaStatus status, std::string message) {
  state_.status = status;
  state_.message = std::move(message);
  publish();
}

void ClaudeQuotaProvider::publish() const {
  if (onState) {
    onState(state_);
  }
}

void ClaudeQuotaProvider::scheduleDisplay() {
  schedule_.scheduleDisplay(
      ClaudeQuotaFormatter::nextVisibleChange(state_, demand_, ports_.clock.now()));
}

Seconds ClaudeQuotaProvider::interval() const {
  return std::chrono::minutes{state_.settings.intervalMinutes};
}

}  // namespace vantora
