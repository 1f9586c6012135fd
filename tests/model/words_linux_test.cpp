// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <string_view>
#include <utility>

#include "model/metric.hpp"
#include "model/words.hpp"

namespace vantora {
namespace {

TEST(LinuxWords, SayWhatIsTrueOfALinuxMachine) {
  const std::pair<std::string_view, std::string_view> expected[] = {
      {Words::batteryTemperatureTitle, "Bateria · temperatura média"},
      {Words::cpuTemperatureTitle, "CPU · maior temperatura"},
      {Words::fan1PercentTitle, "Ventoinha 1 · % do RPM máximo"},
      {Words::fan2PercentTitle, "Ventoinha 2 · % do RPM máximo"},
      {Words::fan1RPMTitle, "Ventoinha 1 · RPM"},
      {Words::fan2RPMTitle, "Ventoinha 2 · RPM"},
      {Words::inputWattsTitle, "Entrada · potência (não validada)"},
      {Words::sourceNotValidated, "Fonte ainda não validada neste computador"},
      {Words::claudeNotLoggedIn,
       "O Claude Code deste computador não tem login de assinatura Claude. No terminal, rode "
       "claude e use /login."},
      {Words::codexExecutableSelected, "Executável Codex selecionado para este computador."},
      {Words::loginItemEnabled, "Vantora iniciará ao entrar na sessão."},
      {Words::loginItemNeedsApproval, "Aprovação pendente nas configurações do sistema."},
      {Words::windowProgramMissing,
       "Falta o programa vantora-settings: instale o pacote vantora-settings."},
      {Words::startAtLoginLabel, "&Iniciar ao entrar na sessão"},
      {Words::batteryNote,
       "A porcentagem da bateria é calculada das capacidades informadas pela bateria interna. O "
       "tempo vem da estimativa do driver ou, sem ela, da potência medida."},
      {Words::sensorNote,
       "CPU mais quente: maior leitura dos sensores do próprio processador, via hwmon. "
       "Ventoinhas: RPM atual e porcentagem do máximo informado pelo driver. Estas leituras são "
       "somente leitura."},
      {Words::claudeQueryNote,
       "A cada consulta o Vantora abre o Claude Code oficial em modo SDK, pede só os dados de uso "
       "(get_usage) e o encerra. Não envia mensagens, não executa tarefas de IA e não lê o "
       "chaveiro de senhas: login e renovação ficam com o próprio Claude Code."},
      {Words::claudeLoginNote,
       "LOGIN indica que o Claude Code deste computador não tem login de assinatura; rode claude "
       "no terminal e use /login. A consulta é experimental no Claude Code e pode mudar."},
  };
  for (const auto& [text, wanted] : expected) {
    EXPECT_EQ(text, wanted);
  }
}

TEST(LinuxWords, AreInTheTitlesOfEveryMetric) {
  for (const MetricID metric : allMetrics) {
    for (const std::string_view word : {"Mac", "SMC", "IOKit"}) {
      EXPECT_EQ(title(metric).find(word), std::string_view::npos) << title(metric);
    }
  }
}

}  // namespace
}  // namespace vantora
