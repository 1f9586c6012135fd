// SPDX-License-Identifier: MIT
#include "app/print/print_options.hpp"

#include <CLI/CLI.hpp>
#include <cmath>
#include <map>

namespace vantora {
namespace {

const std::map<std::string, PrintFormat>& formats() {
  static const std::map<std::string, PrintFormat> all{{"text", PrintFormat::text},
                                                      {"json", PrintFormat::json},
                                                      {"i3bar", PrintFormat::i3bar},
                                                      {"waybar", PrintFormat::waybar}};
  return all;
}

PrintExit complaint(const std::string& reason) {
  return {2, "vantora-print: " + reason + " (veja vantora-print --help)\n"};
}

constexpr const char* help =
    "Uso: vantora-print [--follow] [--format text|json|i3bar|waybar] [--timeout SEGUNDOS]\n"
    "\n"
    "Mostra as leituras do Vantora sem precisar de um painel.\n"
    "\n"
    "  --follow             uma linha a cada mudança, até ser interrompido\n"
    "  --format FORMATO     text (padrão), json, i3bar ou waybar\n"
    "  --timeout SEGUNDOS   espera no máximo este tempo pelas leituras (padrão 60);\n"
    "                       com --follow, encerra depois deste tempo\n"
    "  --help               mostra esta ajuda\n";

}  // namespace

std::variant<PrintOptions, PrintExit> parsePrintOptions(int argc, const char* const* argv) {
  CLI::App app;
  app.set_help_flag();
  bool wantsHelp = false;
  PrintOptions options;
  std::string format = "text";
  std::string timeout;
  app.add_flag("--help,-h", wantsHelp);
  app.add_flag("--follow", options.follow);
  const auto* formatOption = app.add_option("--format", format);
  const auto* timeoutOption = app.add_option("--timeout", timeout);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ArgumentMismatch&) {
    return complaint(formatOption->count() > 1 || timeoutOption->count() > 1
                         ? "a mesma opção foi dada duas vezes"
                         : "falta o valor de uma opção");
  } catch (const CLI::ExtrasError&) {
    const auto extras = app.remaining();
    return complaint("argumento desconhecido: " + (extras.empty() ? "" : extras.front()));
  } catch (const CLI::ParseError&) {
    return complaint("não entendi os argumentos");
  }
  if (wantsHelp) {
    return PrintExit{0, help};
  }
  const auto known = formats().find(format);
  if (known == formats().end()) {
    return complaint("formato desconhecido: \"" + format + "\"");
  }
  options.format = known->second;
  if (timeoutOption->count() > 0) {
    double seconds = 0;
    const bool isNumber = CLI::detail::lexical_cast(timeout, seconds);
    if (!isNumber || !std::isfinite(seconds) || seconds <= 0 || seconds > 86'400) {
      return complaint("tempo inválido: \"" + timeout + "\" (de 0 até 86400 segundos)");
    }
    options.timeout = Seconds{seconds};
    options.hasTimeout = true;
  }
  return options;
}

}  // namespace vantora
