// SPDX-License-Identifier: MIT
#include "codex/codex_quota_provider.hpp"

#include <time.h>

#include <algorithm>
#include <utility>

#include "codex/codex_quota_formatter.hpp"
#include "codex/weekly_quota_selector.hpp"

namespace vantora {
namespace {

constexpr MetricSet codexMetrics{MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset};

std::string readyMessage(const CodexQuotaReading& reading) {
  if (reading.overUsed) {
    return "O servidor informou uso acima de 100%.";
  }
  if (reading.ordinaryUsageAllowed == false) {
    return "Uso comum bloqueado pelo serviço; saldo não libera acesso.";
  }
  return "Cota semanal da categoria " + reading.limitID + ", consultada com sucesso.";
}

}  // namespace

// The timers are exact: the countdown changes on its minute.
CodexQuotaProvider::CodexQuotaProvider(Ports ports)
    : ports_(std::move(ports)),
      schedule_(
          ports_.mainQueue, ports_.clock, ports_.random, {}, [this] { query(false); },
          [this] { displayTick(); }) {}

CodexQuotaProvider::~CodexQuotaProvider() {
  stop();
}

void CodexQuotaProvider::configure(const AppConfiguration& configuration, bool sleeping) {
  const CodexQuotaSettings settings = configuration.codexSettings.value_or(CodexQuotaSettings{});
  const CodexQuotaSettings previous = std::exchange(state_.settings, settings);
  demand_ = configuration.demand();
  const bool isWanted =
      settings.enabled && demand_.intersects(codexMetrics) && !configuration.paused && !sleeping;
  if (!isWanted) {
    stop();
    state_ = {};
    state_.settings = settings;
    publish();
    return;
  }
  if (!active_) {
    active_ = true;
    show(CodexQuotaStatus::connecting, "Verificando a sessão existente do Codex.");
    query(false);
    return;
  }
  if (settings.selectedLimitID != previous.selectedLimitID) {
    query(true);
    return;
  }
  publish();
  scheduleDisplay();
  if (settings.intervalMinutes != previous.intervalMinutes && client_ == nullptr) {
    schedule_.scheduleQueryAtInterval(interval());
  }
}

void CodexQuotaProvider::manualRefresh() {
  if (active_ && client_ == nullptr && schedule_.isLeastDistancePassed()) {
    schedule_.resetFailures();
    query(true);
  }
}

void CodexQuotaProvider::connectInBrowser() {
  if (!active_ || state_.status != CodexQuotaStatus::needsAuthentication || client_ != nullptr) {
    return;
  }
  const std::optional<std::string> executable = ports_.resolveExecutable();
  if (!executable) {
    showMissingExecutable();
    return;
  }
  const QuerySchedule::Ticket ticket = schedule_.beginLogin();
  show(CodexQuotaStatus::connecting, "Aguardando o início do login oficial no navegador.");
  converse(*executable, CodexClientMode::login, ticket);
}

void CodexQuotaProvider::executableSelectionChanged() {
  if (!active_) {
    return;
  }
  stop();
  active_ = true;
  CodexQuotaState fresh;
  fresh.settings = state_.settings;
  // Only for the moment until the query says what it does.
  fresh.status = CodexQuotaStatus::connecting;
  state_ = std::move(fresh);
  publish();
  query(false);
}

std::string CodexQuotaProvider::executableDescription() const {
  return ports_.resolveExecutable().value_or("Codex CLI não encontrado");
}

void CodexQuotaProvider::stop() {
  schedule_.stop();
  if (client_ != nullptr) {
    client_->cancel();
    client_.reset();
  }
  active_ = false;
}

void CodexQuotaProvider::query(bool force) {
  if (!active_ || client_ != nullptr) {
    return;
  }
  const std::optional<std::string> executable = ports_.resolveExecutable();
  if (!executable) {
    showMissingExecutable();
    return;
  }
  const QuerySchedule::Ticket ticket = schedule_.beginQuery();
  // A routine refresh leaves what is shown alone.
  if (force || !state_.lastSuccess) {
    show(CodexQuotaStatus::connecting, "Consultando a cota semanal pelo App Server oficial.");
  }
  converse(*executable, CodexClientMode::read, ticket);
}

void CodexQuotaProvider::converse(const std::string& executable, CodexClientMode mode,
                                  const QuerySchedule::Ticket& ticket) {
  std::function<void(std::string)> onURL;
  if (mode == CodexClientMode::login) {
    onURL = [this, ticket](const std::string& url) {
      if (!ticket.isCurrent()) {
        return;
      }
      state_.message = "Conclua o login no navegador; o saldo só será lido após confirmação.";
      publish();
      if (onLoginURL) {
        onLoginURL(url);
      }
    };
  }
  client_ = ports_.makeClient(executable, mode, std::move(onURL),
                              [this, ticket](const CodexClientResult& result) {
                                if (ticket.isCurrent()) {
                                  finish(result);
                                }
                              });
  client_->start();
}

void CodexQuotaProvider::finish(const CodexClientResult& result) {
  // The client holds the callback that is running: it goes at the very end.
  const std::shared_ptr<CodexClient> finished = std::exchange(client_, nullptr);
  std::visit([this](const auto& content) { accept(content); }, result);
}

void CodexQuotaProvider::accept(const codex_result::Quota& quota) {
  const std::optional<CodexQuotaSelection> selection =
      WeeklyQuotaSelector::select(quota.json, state_.settings.selectedLimitID);
  if (!selection) {
    transientFailure("Resposta de limites inválida.");
    return;
  }
  schedule_.resetFailures();
  if (selection->reading) {
    accept(*selection->reading);
  } else {
    clearValues();
  }
  state_.candidates = selection->candidates;
  switch (selection->outcome) {
    case CodexQuotaSelection::Outcome::ready:
      show(CodexQuotaStatus::ready, readyMessage(*selection->reading));
      break;
    case CodexQuotaSelection::Outcome::weeklyUnavailable:
      show(CodexQuotaStatus::weeklyUnavailable, "Nenhuma janela de 10.080 minutos foi retornada.");
      break;
    case CodexQuotaSelection::Outcome::selectionRequired:
      show(CodexQuotaStatus::selectionRequired,
           "Escolha uma categoria de cota semanal nas configurações.");
      break;
    case CodexQuotaSelection::Outcome::selectedCategoryMissing:
      show(CodexQuotaStatus::selectionRequired,
           "A categoria escolhida não consta da resposta atual.");
      break;
  }
  scheduleDisplay();
  schedule_.scheduleQuery(interval());
}

void CodexQuotaProvider::accept(const CodexQuotaReading& reading) {
  if (reading.resetAt != state_.resetAt) {
    lastResetTriggered_.reset();
  }
  state_.usedPercent = reading.usedPercent;
  state_.resetAt = reading.resetAt;
  state_.limitID = reading.limitID;
  state_.accountID = reading.accountID;
  state_.ordinaryUsageAllowed = reading.ordinaryUsageAllowed;
  state_.lastSuccess = ports_.clock.now();
  // Whoever travels reads the reset date in the zone of the place.
  tzset();
}

void CodexQuotaProvider::accept(const codex_result::Failure& failure) {
  transientFailure(failure.text);
}

// What follows schedules nothing, on purpose: a logged-out or refused account is not
// asked again until the user acts or the configuration changes.
void CodexQuotaProvider::accept(const codex_result::NeedsAuthentication& /*result*/) {
  refuse(CodexQuotaStatus::needsAuthentication,
         "A sessão do CLI precisa de autenticação. Conecte pelo navegador quando desejar.");
}

void CodexQuotaProvider::accept(const codex_result::UnsupportedAccount& /*result*/) {
  refuse(CodexQuotaStatus::permissionDenied,
         "A sessão acessível não é um login ChatGPT; nenhuma cota da assinatura foi usada.");
}

void CodexQuotaProvider::accept(const codex_result::PermissionDenied& /*result*/) {
  refuse(CodexQuotaStatus::permissionDenied, "A conta ou política não permitiu esta consulta.");
}

void CodexQuotaProvider::accept(const codex_result::UnsupportedVersion& /*result*/) {
  refuse(CodexQuotaStatus::unsupportedVersion,
         "Esta versão do Codex CLI não oferece o método necessário.");
}

void CodexQuotaProvider::accept(const codex_result::Cancelled& /*result*/) {}

void CodexQuotaProvider::refuse(CodexQuotaStatus status, std::string message) {
  clearValues();
  show(status, std::move(message));
}

void CodexQuotaProvider::transientFailure(const std::string& text) {
  show(state_.lastSuccess ? CodexQuotaStatus::stale : CodexQuotaStatus::error,
       text + " Nova tentativa com atraso.");
  scheduleDisplay();
  schedule_.scheduleRetry(interval());
}

void CodexQuotaProvider::displayTick() {
  const bool isResetDue = state_.resetAt && *state_.resetAt <= ports_.clock.now() &&
                          state_.resetAt != lastResetTriggered_;
  if (isResetDue && schedule_.isLeastDistancePassed() && client_ == nullptr) {
    lastResetTriggered_ = state_.resetAt;
    query(true);
  }
  publish();
  scheduleDisplay();
}

void CodexQuotaProvider::clearValues() {
  state_.usedPercent.reset();
  state_.resetAt.reset();
  state_.candidates.clear();
  schedule_.scheduleDisplay(std::nullopt);
}

void CodexQuotaProvider::showMissingExecutable() {
  state_.usedPercent.reset();
  state_.resetAt.reset();
  show(CodexQuotaStatus::dependencyMissing, "Selecione uma instalação oficial do Codex CLI.");
}

void CodexQuotaProvider::show(CodexQuotaStatus status, std::string message) {
  state_.status = status;
  state_.message = std::move(message);
  publish();
}

void CodexQuotaProvider::publish() const {
  if (onState) {
    onState(state_);
  }
}

void CodexQuotaProvider::scheduleDisplay() {
  const WallTime now = ports_.clock.now();
  std::optional<Seconds> soonest;
  if (demand_.contains(MetricID::codexWeeklyReset)) {
    soonest = CodexQuotaFormatter::nextVisibleChange(state_, now);
  }
  if (state_.lastSuccess) {
    const Seconds untilOld = quotaValueLifetime - secondsBetween(*state_.lastSuccess, now);
    if (untilOld > Seconds{0}) {
      soonest = std::min(soonest.value_or(untilOld), untilOld);
    }
  }
  schedule_.scheduleDisplay(soonest);
}

Seconds CodexQuotaProvider::interval() const {
  return std::chrono::minutes{state_.settings.intervalMinutes};
}

}  // namespace vantora
