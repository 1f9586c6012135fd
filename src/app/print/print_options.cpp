// SPDX-License-Identifier: MIT
#include "app/print/print_options.hpp"

#include <CLI/CLI.hpp>
#include <cmath>
#include <map>

#include "model/version.hpp"

namespace vantora {
namespace {

const std::map<std::string, PrintFormat>& formats() {
  static const std::map<std::string, PrintFormat> all{
      {"list", PrintFormat::list},     {"text", PrintFormat::text},
      {"json", PrintFormat::json},     {"i3bar", PrintFormat::i3bar},
      {"waybar", PrintFormat::waybar}, {"openmetrics", PrintFormat::openMetrics}};
  return all;
}

ProgramAnswer complaint(const std::string& reason) {
  return {2, "vantora-print: " + reason + " (veja vantora-print --help)\n"};
}

constexpr const char* help =
    "Uso: vantora-print [--follow] [--format FORMATO] [--timeout SEGUNDOS] [--output ARQUIVO]\n"
    "     vantora-print --diagnose [--json]\n"
    "\n"
    "Mostra as leituras do Vantora sem precisar de um painel.\n"
    "\n"
    "      --follow             atualiza a cada mudança, até ser interrompido\n"
    "      --format FORMATO     list: uma linha por métrica, com o motivo do que falta (padrão\n"
    "                           no terminal); text: tudo em uma linha (padrão fora dele);\n"
    "                           json, i3bar, waybar ou openmetrics (para o Prometheus, com\n"
    "                           todas as métricas)\n"
    "      --timeout SEGUNDOS   espera pelas leituras no máximo esse tempo (padrão 60);\n"
    "                           com --follow, encerra depois desse tempo\n"
    "      --output ARQUIVO     com openmetrics, substitui esse arquivo a cada mudança em vez\n"
    "                           de escrever na saída\n"
    "      --diagnose           mostra o que o programa vê: sensores, rede, cotas, arquivos e,\n"
    "                           do que falta, o motivo; pergunta ao vantora em execução, se\n"
    "                           houver um\n"
    "      --json               com --diagnose, escreve em JSON, para relatar um problema\n"
    "  -h, --help               mostra esta ajuda\n"
    "      --version            mostra a versão\n";

}  // namespace

std::variant<PrintOptions, ProgramAnswer> parsePrintOptions(int argc, const char* const* argv,
                                                            bool isTerminal) {
  CLI::App app;
  app.set_help_flag();
  bool wantsHelp = false;
  bool wantsVersion = false;
  bool wantsDiagnosis = false;
  bool wantsJson = false;
  PrintOptions options;
  std::string format = isTerminal ? "list" : "text";
  std::string timeout;
  app.add_flag("--help,-h", wantsHelp);
  app.add_flag("--version", wantsVersion);
  app.add_flag("--diagnose", wantsDiagnosis);
  app.add_flag("--json", wantsJson);
  app.add_flag("--follow", options.follow);
  const auto* formatOption = app.add_option("--format", format);
  const auto* timeoutOption = app.add_option("--timeout", timeout);
  const auto* outputOption = app.add_option("--output", options.outputFile);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ArgumentMismatch&) {
    return complaint(formatOption->count() > 1 || timeoutOption->count() > 1 ||
                             outputOption->count() > 1
                         ? "a mesma opção aparece duas vezes"
                         : "falta o valor de uma opção");
  } catch (const CLI::ExtrasError&) {
    const auto extras = app.remaining();
    return complaint("argumento desconhecido: " + (extras.empty() ? "" : extras.front()));
  } catch (const CLI::ParseError&) {
    return complaint("argumentos inválidos");
  }
  if (wantsHelp) {
    return ProgramAnswer{0, help};
  }
  if (wantsVersion) {
    return ProgramAnswer{0, std::string("vantora-print ") + programVersion + "\n"};
  }
  if (wantsDiagnosis) {
    if (options.follow || formatOption->count() > 0 || timeoutOption->count() > 0 ||
        outputOption->count() > 0) {
      return complaint("--diagnose só aceita --json ao seu lado");
    }
    options.task = wantsJson ? PrintTask::diagnosisAsJson : PrintTask::diagnosis;
    return options;
  }
  if (wantsJson) {
    return complaint("--json só vale com --diagnose; para as leituras, use --format json");
  }
  const auto known = formats().find(format);
  if (known == formats().end()) {
    return complaint("formato desconhecido: \"" + format + "\"");
  }
  options.format = known->second;
  if (outputOption->count() > 0) {
    if (options.format != PrintFormat::openMetrics) {
      return complaint("--output só vale com --format openmetrics");
    }
    if (options.outputFile.empty()) {
      return complaint("falta o nome do arquivo de --output");
    }
  }
  if (timeoutOption->count() > 0) {
    double seconds = 0;
    const bool isNumber = CLI::detail::lexical_cast(timeout, seconds);
    if (!isNumber || !std::isfinite(seconds) || seconds <= 0 || seconds > 86'400) {
      return complaint("tempo inválido: \"" + timeout +
                       "\" (mais de 0 e no máximo 86400 segundos)");
    }
    options.timeout = Seconds{seconds};
    options.hasTimeout = true;
  }
  return options;
}

}  // namespace vantora
