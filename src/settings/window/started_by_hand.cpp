// SPDX-License-Identifier: MIT
#include "settings/window/started_by_hand.hpp"

#include <sys/stat.h>

#include <cstdio>
#include <string_view>

#include "model/version.hpp"

namespace vantora {
namespace {

constexpr const char* help =
    "Uso: vantora-settings\n"
    "\n"
    "A janela de configurações do Vantora. O vantora a inicia quando alguém clica no item ou\n"
    "inicia o vantora de novo; sozinha ela não tem o que mostrar.\n"
    "\n"
    "  -h, --help      mostra esta ajuda\n"
    "      --version   mostra a versão\n";

bool isConversation(int input) {
  struct stat status {};
  return ::fstat(input, &status) == 0 && (S_ISFIFO(status.st_mode) || S_ISSOCK(status.st_mode));
}

int flushed(int status) {
  return std::fflush(stdout) == 0 ? status : 1;
}

}  // namespace

std::optional<int> answerStartByHand(int argc, const char* const* argv, int input) {
  const std::string_view first = argc == 2 ? argv[1] : "";
  if (first == "--help" || first == "-h") {
    std::fputs(help, stdout);
    return flushed(0);
  }
  if (first == "--version") {
    std::printf("vantora-settings %s\n", programVersion);
    return flushed(0);
  }
  if (isConversation(input)) {
    return std::nullopt;
  }
  std::fputs(
      "vantora-settings: esta é a janela do vantora, que a inicia; para abri-la, clique no item "
      "do painel ou inicie o vantora de novo\n",
      stderr);
  return 2;
}

}  // namespace vantora
