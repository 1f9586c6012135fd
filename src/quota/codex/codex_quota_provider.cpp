// SPDX-License-Identifier: MIT
#include "quota/codex/codex_quota_provider.hpp"

#include <time.h>

#include <algorithm>
#include <utility>

#include "quota/codex/codex_quota_formatter.hpp"

namespace vantora {
namespace {

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

// No leeways: the countdown changes on its minute.
CodexQuotaProvider::CodexQuotaProvider(Ports ports)
    : QuotaProvider(std::move(ports),
                    {.metrics = {MetricID::codexWeeklyPercent, MetricID::codexWeeklyReset},
                     .settings = &AppConfiguration::codexSettings,
                     .queryMessage = "Consultando a cota semanal pelo App Server oficial.",
                     .startMessage = "Verificando a sessão existente do Codex.",
                     .executableNotFound = "Codex CLI não encontrado",
                     .newIntervalStartsQueries = true,
                     .showsQueryAfterReset = true}) {}

void CodexQuotaProvider::connectInBrowser() {
  if (!isActive() || state().status != CodexQuotaStatus::needsAuthentication || isConversing()) {
    return;
  }
  const auto executable = ports().resolveExecutable();
  if (!executable) {
    showMissingExecutable();
    return;
  }
  const QuerySchedule::Ticket ticket = schedule().beginLogin();
  show(CodexQuotaStatus::connecting, "Aguardando o início do login oficial no navegador.");
  converse(ports().makeClient(
      *executable, CodexClientMode::login,
      [this, ticket](const std::string& url) {
        if (ticket.isCurrent()) {
          showLoginPage(url);
        }
      },
      completionFor(ticket)));
}

void CodexQuotaProvider::showLoginPage(const std::string& url) {
  show(state().status, "Conclua o login no navegador; o saldo só será lido após confirmação.");
  if (onLoginURL) {
    onLoginURL(url);
  }
}

void CodexQuotaProvider::executableSelectionChanged() {
  if (isActive()) {
    restart();
  }
}

std::shared_ptr<QuotaClient> CodexQuotaProvider::makeReader(
    const AssistantExecutable& executable,
    std::function<void(const CodexClientResult&)> completion) {
  return ports().makeClient(executable, CodexClientMode::read, nullptr, std::move(completion));
}

bool CodexQuotaProvider::mustQueryAgain(const CodexQuotaSettings& previous) const {
  return state().settings.selectedLimitID != previous.selectedLimitID;
}

void CodexQuotaProvider::accept(const CodexClientResult& result) {
  std::visit([this](const auto& content) { take(content); }, result);
}

void CodexQuotaProvider::take(const quota_result::Answer& answer) {
  const auto selection = WeeklyQuotaSelector::select(answer.json, state().settings.selectedLimitID);
  if (!selection) {
    retryAfter("Resposta de limites inválida.");
    return;
  }
  schedule().resetFailures();
  if (selection->reading) {
    take(*selection->reading);
  } else {
    clearValues();
  }
  mutableState().candidates = selection->candidates;
  showSelection(*selection);
  scheduleDisplay();
  schedule().scheduleQuery(interval());
}

void CodexQuotaProvider::take(const CodexQuotaReading& reading) {
  CodexQuotaState& state = mutableState();
  if (reading.resetAt != state.resetAt) {
    forgetQueriedReset();
  }
  state.usedPercent = reading.usedPercent;
  state.resetAt = reading.resetAt;
  state.limitID = reading.limitID;
  state.accountID = reading.accountID;
  state.ordinaryUsageAllowed = reading.ordinaryUsageAllowed;
  state.lastSuccess = ports().clock.now();
  // The reset date is shown in the local time zone, which changes when the user travels.
  tzset();
}

void CodexQuotaProvider::showSelection(const CodexQuotaSelection& selection) {
  switch (selection.outcome) {
    case CodexQuotaSelection::Outcome::ready:
      show(CodexQuotaStatus::ready, readyMessage(*selection.reading));
      return;
    case CodexQuotaSelection::Outcome::weeklyUnavailable:
      show(CodexQuotaStatus::weeklyUnavailable, "Nenhuma janela de 10.080 minutos foi retornada.");
      return;
    case CodexQuotaSelection::Outcome::selectionRequired:
      show(CodexQuotaStatus::selectionRequired,
           "Escolha uma categoria de cota semanal nas configurações.");
      return;
    case CodexQuotaSelection::Outcome::selectedCategoryMissing:
      show(CodexQuotaStatus::selectionRequired,
           "A categoria escolhida não consta da resposta atual.");
      return;
  }
}

void CodexQuotaProvider::take(const quota_result::NeedsAuthentication& /*result*/) {
  refuse(CodexQuotaStatus::needsAuthentication,
         "A sessão do CLI precisa de autenticação. Conecte pelo navegador quando desejar.");
}

void CodexQuotaProvider::take(const codex_result::UnsupportedAccount& /*result*/) {
  refuse(CodexQuotaStatus::permissionDenied,
         "A sessão acessível não é um login ChatGPT; nenhuma cota da assinatura foi usada.");
}

void CodexQuotaProvider::take(const codex_result::PermissionDenied& /*result*/) {
  refuse(CodexQuotaStatus::permissionDenied, "A conta ou política não permitiu esta consulta.");
}

void CodexQuotaProvider::take(const quota_result::UnsupportedVersion& /*result*/) {
  refuse(CodexQuotaStatus::unsupportedVersion,
         "Esta versão do Codex CLI não oferece o método necessário.");
}

// Schedules nothing.
void CodexQuotaProvider::refuse(CodexQuotaStatus status, const std::string& message) {
  clearValues();
  show(status, message);
}

// Schedules nothing either: a new configuration, a refresh or a new selection starts again.
void CodexQuotaProvider::showMissingExecutable() {
  mutableState().usedPercent.reset();
  mutableState().resetAt.reset();
  show(CodexQuotaStatus::dependencyMissing, "Selecione uma instalação oficial do Codex CLI.");
}

void CodexQuotaProvider::clearValues() {
  mutableState().usedPercent.reset();
  mutableState().resetAt.reset();
  mutableState().candidates.clear();
  schedule().scheduleDisplay(std::nullopt);
}

std::optional<WallTime> CodexQuotaProvider::passedReset(WallTime now) const {
  return state().resetAt && *state().resetAt <= now ? state().resetAt : std::nullopt;
}

std::optional<Seconds> CodexQuotaProvider::nextVisibleChange(WallTime now) const {
  std::optional<Seconds> soonest;
  if (demand().contains(MetricID::codexWeeklyReset)) {
    soonest = CodexQuotaFormatter::nextVisibleChange(state(), now);
  }
  if (state().lastSuccess) {
    const Seconds untilOld = quotaValueLifetime - secondsBetween(*state().lastSuccess, now);
    if (untilOld > Seconds{0}) {
      soonest = std::min(soonest.value_or(untilOld), untilOld);
    }
  }
  return soonest;
}

}  // namespace vantora
