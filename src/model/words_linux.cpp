// SPDX-License-Identifier: MIT
#include "model/words.hpp"

namespace vantora {

const char Words::batteryTemperatureTitle[] = "Bateria · temperatura média";
const char Words::cpuTemperatureTitle[] = "CPU · maior temperatura";
const char Words::fan1PercentTitle[] = "Ventoinha 1 · % do RPM máximo";
const char Words::fan2PercentTitle[] = "Ventoinha 2 · % do RPM máximo";
const char Words::fan1RPMTitle[] = "Ventoinha 1 · RPM";
const char Words::fan2RPMTitle[] = "Ventoinha 2 · RPM";
const char Words::inputWattsTitle[] = "Entrada · potência (não validada)";

const char Words::sourceNotValidated[] = "Fonte ainda não validada neste computador";

const char Words::claudeNotLoggedIn[] =
    "O Claude Code deste computador não tem login de assinatura Claude. No terminal, rode claude e "
    "use /login.";
const char Words::codexExecutableSelected[] = "Executável Codex selecionado para este computador.";
const char Words::loginItemEnabled[] = "Vantora iniciará ao entrar na sessão.";
const char Words::loginItemNeedsApproval[] = "Aprovação pendente nas configurações do sistema.";
const char Words::windowProgramMissing[] =
    "Falta o programa vantora-settings: instale o pacote vantora-settings.";

const char Words::startAtLoginLabel[] = "&Iniciar ao entrar na sessão";
const char Words::batteryNote[] =
    "A porcentagem da bateria é calculada das capacidades informadas pela bateria interna. O tempo "
    "vem da estimativa do driver ou, sem ela, da potência medida.";
const char Words::sensorNote[] =
    "CPU mais quente: maior leitura dos sensores do próprio processador, via hwmon. Ventoinhas: "
    "RPM atual e porcentagem do máximo informado pelo driver. Estas leituras são somente leitura.";
const char Words::claudeQueryNote[] =
    "A cada consulta o Vantora abre o Claude Code oficial em modo SDK, pede só os dados de uso "
    "(get_usage) e o encerra. Não envia mensagens, não executa tarefas de IA e não lê o chaveiro "
    "de senhas: login e renovação ficam com o próprio Claude Code.";
const char Words::claudeLoginNote[] =
    "LOGIN indica que o Claude Code deste computador não tem login de assinatura; rode claude no "
    "terminal e use /login. A consulta é experimental no Claude Code e pode mudar.";

}  // namespace vantora
