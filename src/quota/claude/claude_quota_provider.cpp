// SPDX-License-Identifier: MIT
#include "quota/claude/claude_quota_provider.hpp"

#include <algorithm>
#include <utility>

#include "model/words.hpp"
#include "quota/claude/claude_quota_formatter.hpp"

namespace vantora {
namespace {

constexpr Seconds minExecutableWait{600};
constexpr Seconds minLoginWait{600};
constexpr Seconds minUpdateWait{1800};

}  // namespace

ClaudeQuotaProvider::ClaudeQuotaProvider(Ports ports)
    : QuotaProvider(std::move(ports),
                    {.metrics = {MetricID::claudeWeeklyPercent, MetricID::claudeSessionPercent},
                     .settings = &AppConfiguration::claudeSettings,
                     .leeways = {.query = Seconds{2}, .display = Seconds{1}},
                     .queryMessage = "Consultando os limites pelo Claude Code.",
                     .executableNotFound = "Claude Code (claude) não encontrado",
                     .stopForgetsReset = true}) {}

void ClaudeQuotaProvider::take(const quota_result::Answer& answer) {
  const auto usage = ClaudeUsageParser::parseUsageResponse(answer.json);
  if (!usage) {
    retryAfter("Resposta de uso inválida.");
    return;
  }
  schedule().resetFailures();
  std::visit([this](const auto& content) { take(content); }, *usage);
}

void ClaudeQuotaProvider::take(const ClaudeUsageReading& reading) {
  ClaudeQuotaState& state = mutableState();
  if (reading.weeklyResetAt != state.weeklyResetAt ||
      reading.sessionResetAt != state.sessionResetAt) {
    forgetQueriedReset();
  }
  state.weeklyUsed = reading.weeklyUsed;
  state.weeklyResetAt = reading.weeklyResetAt;
  state.sessionUsed = reading.sessionUsed;
  state.sessionResetAt = reading.sessionResetAt;
  state.lastSuccess = ports().clock.now();
  show(ClaudeQuotaStatus::ready,
       reading.overUsed() ? "O serviço informou uso acima de 100%."
                          : "Limites do Claude (semanal e 5 horas) consultados com sucesso.");
  scheduleDisplay();
  schedule().scheduleQuery(interval());
}

void ClaudeQuotaProvider::take(ClaudeUsageAbsence absence) {
  switch (absence) {
    case ClaudeUsageAbsence::planLimitsUnavailable:
      take(quota_result::NeedsAuthentication{});
      return;
    case ClaudeUsageAbsence::noWindows:
      showWithoutValues(ClaudeQuotaStatus::limitsUnavailable,
                        "O Claude Code não recebeu as janelas semanal e de 5 horas desta conta.",
                        Seconds{0});
      return;
  }
}

void ClaudeQuotaProvider::take(const quota_result::NeedsAuthentication& /*result*/) {
  showWithoutValues(ClaudeQuotaStatus::needsAuthentication, Words::claudeNotLoggedIn, minLoginWait);
}

void ClaudeQuotaProvider::take(const quota_result::UnsupportedVersion& /*result*/) {
  showWithoutValues(
      ClaudeQuotaStatus::unsupportedVersion,
      "Esta versão do Claude Code não oferece a consulta de uso. Atualize com claude update.",
      minUpdateWait);
}

void ClaudeQuotaProvider::showMissingExecutable() {
  showWithoutValues(
      ClaudeQuotaStatus::dependencyMissing,
      "Claude Code (claude) não encontrado. Instale o CLI oficial para ler os limites.",
      minExecutableWait);
}

void ClaudeQuotaProvider::showWithoutValues(ClaudeQuotaStatus status, const char* message,
                                            Seconds minWait) {
  ClaudeQuotaState& state = mutableState();
  state.weeklyUsed.reset();
  state.weeklyResetAt.reset();
  state.sessionUsed.reset();
  state.sessionResetAt.reset();
  state.lastSuccess.reset();
  schedule().scheduleDisplay(std::nullopt);
  show(status, message);
  schedule().scheduleQuery(std::max(minWait, interval()));
}

std::optional<WallTime> ClaudeQuotaProvider::passedReset(WallTime now) const {
  std::optional<WallTime> latest;
  for (const auto& resetAt : {state().weeklyResetAt, state().sessionResetAt}) {
    if (resetAt && *resetAt <= now) {
      latest = std::max(latest.value_or(*resetAt), *resetAt);
    }
  }
  return latest;
}

std::optional<Seconds> ClaudeQuotaProvider::nextVisibleChange(WallTime now) const {
  return ClaudeQuotaFormatter::nextVisibleChange(state(), demand(), now);
}

}  // namespace vantora
