// SPDX-License-Identifier: MIT
#include "app/linux/agent_arguments.hpp"

#include <string>
#include <string_view>

#include "model/version.hpp"

namespace vantora {
namespace {

constexpr const char* help =
    "Uso: vantora [--help] [--version]\n"
    "\n"
    "Mostra as leituras desta máquina em um item do painel. Um clique no item abre a janela\n"
    "de configurações; iniciar o vantora de novo na mesma sessão também a abre.\n"
    "\n"
    "  -h, --help      mostra esta ajuda\n"
    "      --version   mostra a versão\n"
    "\n"
    "Para ver as leituras no terminal, use o vantora-print.\n";

}  // namespace

std::optional<ProgramAnswer> readAgentArguments(int argc, const char* const* argv) {
  if (argc <= 1) {
    return std::nullopt;
  }
  const std::string_view first = argv[1];
  if (argc == 2 && (first == "--help" || first == "-h")) {
    return ProgramAnswer{0, help};
  }
  if (argc == 2 && first == "--version") {
    return ProgramAnswer{0, std::string("vantora ") + programVersion + "\n"};
  }
  const bool isKnown = first == "--help" || first == "-h" || first == "--version";
  return ProgramAnswer{2, "vantora: argumento desconhecido: " + std::string(argv[isKnown ? 2 : 1]) +
                              " (veja vantora --help)\n"};
}

}  // namespace vantora
