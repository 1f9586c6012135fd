// SPDX-License-Identifier: MIT
#include "model/words.hpp"

#include <gtest/gtest.h>

#include <string_view>
#include <utility>

namespace vantora {
namespace {

TEST(MacWords, AreTheTextsOfAMac) {
  const std::pair<std::string_view, std::string_view> expected[] = {
      {Words::batteryTemperatureTitle, "Bateria · temperatura média (SMC)"},
      {Words::cpuTemperatureTitle, "CPU · maior temperatura (SMC experimental)"},
      {Words::fan1PercentTitle, "Ventoinha 1 · % do RPM máximo (SMC)"},
      {Words::fan2PercentTitle, "Ventoinha 2 · % do RPM máximo (SMC)"},
      {Words::fan1RPMTitle, "Ventoinha 1 · RPM (SMC)"},
      {Words::fan2RPMTitle, "Ventoinha 2 · RPM (SMC)"},
      {Words::inputWattsTitle, "Entrada no Mac · potência (não validada)"},
      {Words::sourceNotValidated, "Fonte ainda não validada neste Mac"},
      {Words::claudeNotLoggedIn,
       "O Claude Code deste Mac não tem login de assinatura Claude. No Terminal, rode claude e "
       "use /login."},
      {Words::codexExecutableSelected, "Executável Codex selecionado para este Mac."},
      {Words::loginItemEnabled, "Vantora iniciará ao entrar na sessão do Mac."},
      {Words::windowProgramMissing,
       "Falta o programa da janela no Vantora.app: instale o Vantora de novo."},
      {Words::loginItemNeedsApproval,
       "Aprovação pendente em Ajustes do Sistema → Itens de Início."},
      {Words::startAtLoginLabel, "&Iniciar ao entrar na sessão do Mac"},
      {Words::batteryNote,
       "A porcentagem da bateria é calculada das capacidades informadas pela bateria interna. O "
       "tempo vem da estimativa em minutos do IOKit."},
      {Words::sensorNote,
       "CPU mais quente: maior leitura de 18 chaves térmicas Tp* da família M5, via SMC "
       "experimental. Ventoinhas: RPM atual e porcentagem de F0Mx/F1Mx. Estas leituras são "
       "somente leitura."},
      {Words::claudeQueryNote,
       "A cada consulta o Vantora abre o Claude Code oficial em modo SDK, pede só os dados de uso "
       "(get_usage) e o encerra. Não envia mensagens, não executa tarefas de IA e não lê o "
       "Keychain: login e renovação ficam com o próprio Claude Code."},
      {Words::claudeLoginNote,
       "LOGIN indica que o Claude Code deste Mac não tem login de assinatura; rode claude no "
       "Terminal e use /login. A consulta é experimental no Claude Code e pode mudar."},
  };
  for (const auto& [text, wanted] : expected) {
    EXPECT_EQ(text, wanted);
  }
}

}  // namespace
}  // namespace vantora
