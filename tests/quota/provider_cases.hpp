// SPDX-License-Identifier: MIT
//
// The two quota providers as columns of one table: what their common tests need to know of each,
// and the rules in which they differ on purpose.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "model/words.hpp"
#include "quota/claude/claude_quota_formatter.hpp"
#include "quota/claude/claude_quota_provider.hpp"
#include "quota/codex/codex_quota_formatter.hpp"
#include "quota/codex/codex_quota_provider.hpp"
#include "support/fake_quota_clients.hpp"

namespace vantora::test {

/// The reset of a reading, in whole seconds since 1970.
using UnixReset = std::optional<long>;

inline std::string withReset(std::string window, const char* key, UnixReset reset) {
  if (reset) {
    window += std::string(",\"") + key + "\":" + std::to_string(*reset);
  }
  return window;
}

/// What a result without values makes of the state.
template <typename Result, typename Status>
struct Refusal {
  Result result;
  Status status;
  const char* message;
  std::optional<Seconds> wait;  ///< Until the next query, at an interval of 3 minutes.
};

struct CodexCase {
  using Provider = CodexQuotaProvider;
  using Result = CodexClientResult;
  using State = CodexQuotaState;
  using Status = CodexQuotaStatus;
  static constexpr MetricID top = MetricID::codexWeeklyPercent;
  static constexpr MetricID bottom = MetricID::codexWeeklyReset;
  static constexpr auto settings = &AppConfiguration::codexSettings;
  static constexpr const char* startMessage = "Verificando a sessão existente do Codex.";
  static constexpr const char* queryMessage = "Consultando a cota semanal pelo App Server oficial.";
  static constexpr const char* notFound = "Codex CLI não encontrado";
  static constexpr const char* failure = "Tempo limite do App Server excedido.";
  static constexpr const char* undecodable = "Resposta de limites inválida.";
  static constexpr const char* success = "Cota semanal da categoria codex, consultada com sucesso.";
  static constexpr const char* overUsed = "O servidor informou uso acima de 100%.";
  static constexpr Seconds queryLeeway{0};
  static constexpr Seconds displayLeeway{0};
  /// How long after a reset, and after the value turned 30 minutes old, the texts are redrawn.
  static constexpr Seconds afterReset{0.1};
  static constexpr Seconds afterExpiry{0};
  static constexpr bool newIntervalStartsQueries = true;
  static constexpr bool showsQueryAfterReset = true;

  static std::string reading(double used, UnixReset reset) {
    return R"({"rateLimitsByLimitId":{"codex":{"primary":{)" +
           withReset(R"("windowDurationMins":10080,"usedPercent":)" + std::to_string(used),
                     "resetsAt", reset) +
           "}}}}";
  }
  static std::string text(MetricID metric, const State& state, WallTime now) {
    return CodexQuotaFormatter::text(metric, state, now).value();
  }
  static std::optional<double> used(const State& state) { return state.usedPercent; }
  static std::optional<WallTime> resetAt(const State& state) { return state.resetAt; }
  static State withoutValues(State state) {
    state.usedPercent.reset();
    state.resetAt.reset();
    state.candidates.clear();
    return state;
  }
  static std::vector<Refusal<Result, Status>> refusals() {
    return {
        {quota_result::NeedsAuthentication{}, Status::needsAuthentication,
         "A sessão do CLI precisa de autenticação. Conecte pelo navegador quando desejar.",
         std::nullopt},
        {codex_result::UnsupportedAccount{}, Status::permissionDenied,
         "A sessão acessível não é um login ChatGPT; nenhuma cota da assinatura foi usada.",
         std::nullopt},
        {codex_result::PermissionDenied{}, Status::permissionDenied,
         "A conta ou política não permitiu esta consulta.", std::nullopt},
        {quota_result::UnsupportedVersion{}, Status::unsupportedVersion,
         "Esta versão do Codex CLI não oferece o método necessário.", std::nullopt},
        {quota_result::Answer{"{}"}, Status::weeklyUnavailable,
         "Nenhuma janela de 10.080 minutos foi retornada.", Seconds{180}},
    };
  }
  /// Without an executable the candidates of the last answer stay.
  static Refusal<State, Status> missingExecutable(State before) {
    State after = withoutValues(before);
    after.candidates = before.candidates;
    return {after, Status::dependencyMissing, "Selecione uma instalação oficial do Codex CLI.",
            std::nullopt};
  }
};

struct ClaudeCase {
  using Provider = ClaudeQuotaProvider;
  using Result = ClaudeClientResult;
  using State = ClaudeQuotaState;
  using Status = ClaudeQuotaStatus;
  static constexpr MetricID top = MetricID::claudeWeeklyPercent;
  static constexpr MetricID bottom = MetricID::claudeSessionPercent;
  static constexpr auto settings = &AppConfiguration::claudeSettings;
  static constexpr const char* startMessage = "Consultando os limites pelo Claude Code.";
  static constexpr const char* queryMessage = startMessage;
  static constexpr const char* notFound = "Claude Code (claude) não encontrado";
  static constexpr const char* failure = "Tempo limite do Claude Code excedido.";
  static constexpr const char* undecodable = "Resposta de uso inválida.";
  static constexpr const char* success =
      "Limites do Claude (semanal e 5 horas) consultados com sucesso.";
  static constexpr const char* overUsed = "O serviço informou uso acima de 100%.";
  static constexpr Seconds queryLeeway{2};
  static constexpr Seconds displayLeeway{1};
  static constexpr Seconds afterReset{0.5};
  static constexpr Seconds afterExpiry{0.5};
  static constexpr bool newIntervalStartsQueries = false;
  static constexpr bool showsQueryAfterReset = false;

  static std::string window(double used, UnixReset reset) {
    return "{" + withReset(R"("utilization":)" + std::to_string(used), "resets_at", reset) + "}";
  }
  static std::string reading(double used, UnixReset reset) {
    return R"({"rate_limits":{"seven_day":)" + window(used, reset) + "}}";
  }
  static std::string text(MetricID metric, const State& state, WallTime now) {
    return ClaudeQuotaFormatter::text(metric, state, now);
  }
  static std::optional<double> used(const State& state) { return state.weeklyUsed; }
  static std::optional<WallTime> resetAt(const State& state) { return state.weeklyResetAt; }
  static State withoutValues(const State& state) {
    State fresh;
    fresh.settings = state.settings;
    return fresh;
  }
  static std::vector<Refusal<Result, Status>> refusals() {
    constexpr const char* login = Words::claudeNotLoggedIn;
    return {
        {quota_result::NeedsAuthentication{}, Status::needsAuthentication, login, Seconds{600}},
        {quota_result::Answer{R"({"rate_limits_available":false,"rate_limits":null})"},
         Status::needsAuthentication, login, Seconds{600}},
        {quota_result::Answer{"{}"}, Status::limitsUnavailable,
         "O Claude Code não recebeu as janelas semanal e de 5 horas desta conta.", Seconds{180}},
        {quota_result::UnsupportedVersion{}, Status::unsupportedVersion,
         "Esta versão do Claude Code não oferece a consulta de uso. Atualize com claude update.",
         Seconds{1800}},
    };
  }
  static Refusal<State, Status> missingExecutable(const State& before) {
    return {withoutValues(before), Status::dependencyMissing,
            "Claude Code (claude) não encontrado. Instale o CLI oficial para ler os limites.",
            Seconds{600}};
  }
};

}  // namespace vantora::test
