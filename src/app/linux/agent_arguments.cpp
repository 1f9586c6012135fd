// SPDX-License-Identifier: MIT
#include "app/linux/agent_arguments.hpp"

#include <algorithm>
#include <array>
#include <span>
#include <string>
#include <string_view>

#include "model/version.hpp"

namespace vantora {
namespace {

constexpr const char* help =
    "Uso: vantora [--diagnose [--json]] [--help] [--version]\n"
    "\n"
    "Mostra as leituras desta máquina em um item do painel. Um clique no item abre a janela\n"
    "de configurações; iniciar o vantora de novo na mesma sessão também a abre.\n"
    "\n"
    "      --diagnose  mostra o que o programa vê: painel, sensores, cotas, arquivos e, do\n"
    "                  que falta, o motivo; pergunta ao vantora em execução, se houver um\n"
    "      --json      com --diagnose, escreve em JSON, para relatar um problema\n"
    "  -h, --help      mostra esta ajuda\n"
    "      --version   mostra a versão\n"
    "\n"
    "Para ver as leituras no terminal, use o vantora-print.\n";

constexpr std::array<std::string_view, 5> known{"--help", "-h", "--version", "--diagnose",
                                                "--json"};

ProgramAnswer complaint(const std::string& reason) {
  return {2, "vantora: " + reason + " (veja vantora --help)\n"};
}

}  // namespace

std::variant<AgentTask, ProgramAnswer> readAgentArguments(int argc, const char* const* argv) {
  if (argc <= 1) {
    return AgentTask::run;
  }
  const std::span<const char* const> arguments(argv + 1, static_cast<std::size_t>(argc - 1));
  const auto is = [&](std::size_t place, std::string_view option) {
    return place < arguments.size() && arguments[place] == option;
  };
  const bool isAlone = arguments.size() == 1;
  if (isAlone && (is(0, "--help") || is(0, "-h"))) {
    return ProgramAnswer{0, help};
  }
  if (isAlone && is(0, "--version")) {
    return ProgramAnswer{0, std::string("vantora ") + programVersion + "\n"};
  }
  if (isAlone && is(0, "--diagnose")) {
    return AgentTask::diagnose;
  }
  if (arguments.size() == 2 &&
      ((is(0, "--diagnose") && is(1, "--json")) || (is(0, "--json") && is(1, "--diagnose")))) {
    return AgentTask::diagnoseAsJson;
  }
  if (isAlone && is(0, "--json")) {
    return complaint("--json só vale com --diagnose");
  }
  // The first that is unknown, or else the first that is one too many.
  auto named = std::find_if(arguments.begin(), arguments.end(), [](const char* argument) {
    return std::find(known.begin(), known.end(), argument) == known.end();
  });
  if (named == arguments.end()) {
    return complaint("argumento demais: " + std::string(arguments[1]));
  }
  return complaint("argumento desconhecido: " + std::string(*named));
}

}  // namespace vantora
