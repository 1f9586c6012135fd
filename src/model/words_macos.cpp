// SPDX-License-Identifier: MIT
#include "model/words.hpp"

namespace vantora {

const char Words::batteryTemperatureTitle[] = "Bateria · temperatura média (SMC)";
const char Words::cpuTemperatureTitle[] = "CPU · maior temperatura (SMC experimental)";
const char Words::fan1PercentTitle[] = "Ventoinha 1 · % do RPM máximo (SMC)";
const char Words::fan2PercentTitle[] = "Ventoinha 2 · % do RPM máximo (SMC)";
const char Words::fan1RPMTitle[] = "Ventoinha 1 · RPM (SMC)";
const char Words::fan2RPMTitle[] = "Ventoinha 2 · RPM (SMC)";
const char Words::inputWattsTitle[] = "Entrada no Mac · potência (não validada)";

const char Words::sourceNotValidated[] = "Fonte ainda não validada neste Mac";

const char Words::claudeNotLoggedIn[] =
    "O Claude Code deste Mac não tem login de assinatura Claude. No Terminal, rode claude e use "
    "/login.";
const char Words::codexExecutableSelected[] = "Executável Codex selecionado para este Mac.";
const char Words::loginItemEnabled[] = "Vantora iniciará ao entrar na sessão do Mac.";
const char Words::loginItemNeedsApproval[] =
    "Aprovação pendente em Ajustes do Sistema → Itens de Início.";
const char Words::windowProgramMissing[] =
    "Falta o programa da janela no Vantora.app: instale o Vantora de novo.";

const char Words::startAtLoginLabel[] = "&Iniciar ao entrar na sessão do Mac";
const char Words::batteryNote[] =
    "A porcentagem da bateria é calculada das capacidades informadas pela bateria interna. O tempo "
    "vem da estimativa em minutos do IOKit.";
const char Words::sensorNote[] =
    "CPU mais quente: maior leitura de 18 chaves térmicas Tp* da família M5, via SMC experimental. "
    "Ventoinhas: RPM atual e porcentagem de F0Mx/F1Mx. Estas leituras são somente leitura.";
const char Words::claudeQueryNote[] =
    "A cada consulta o Vantora abre o Claude Code oficial em modo SDK, pede só os dados de uso "
    "(get_usage) e o encerra. Não envia mensagens, não executa tarefas de IA e não lê o Keychain: "
    "login e renovação ficam com o próprio Claude Code.";
const char Words::claudeLoginNote[] =
    "LOGIN indica que o Claude Code deste Mac não tem login de assinatura; rode claude no Terminal "
    "e use /login. A consulta é experimental no Claude Code e pode mudar.";

}  // namespace vantora
