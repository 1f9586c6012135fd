// SPDX-License-Identifier: MIT
#include "app/print/print_options.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "model/version.hpp"

namespace vantora {
namespace {

std::variant<PrintOptions, ProgramAnswer> parse(std::vector<const char*> arguments,
                                                bool isTerminal = false) {
  arguments.insert(arguments.begin(), "vantora-print");
  return parsePrintOptions(static_cast<int>(arguments.size()), arguments.data(), isTerminal);
}

PrintOptions accepted(std::vector<const char*> arguments) {
  const auto parsed = parse(std::move(arguments));
  EXPECT_TRUE(std::holds_alternative<PrintOptions>(parsed));
  return std::holds_alternative<PrintOptions>(parsed) ? std::get<PrintOptions>(parsed)
                                                      : PrintOptions();
}

ProgramAnswer refused(std::vector<const char*> arguments) {
  const auto parsed = parse(std::move(arguments));
  EXPECT_TRUE(std::holds_alternative<ProgramAnswer>(parsed));
  return std::holds_alternative<ProgramAnswer>(parsed) ? std::get<ProgramAnswer>(parsed)
                                                       : ProgramAnswer();
}

TEST(PrintOptions, PrintTextOnceWithinAMinuteByDefault) {
  const auto options = accepted({});
  EXPECT_FALSE(options.follow);
  EXPECT_EQ(options.format, PrintFormat::text);
  EXPECT_EQ(options.timeout, Seconds{60});
  EXPECT_FALSE(options.hasTimeout);
}

TEST(PrintOptions, PrintTheListOnATerminalUnlessAnotherFormatIsNamed) {
  EXPECT_EQ(std::get<PrintOptions>(parse({}, true)).format, PrintFormat::list);
  EXPECT_EQ(std::get<PrintOptions>(parse({"--format", "text"}, true)).format, PrintFormat::text);
  EXPECT_EQ(accepted({"--format", "list"}).format, PrintFormat::list);
}

TEST(PrintOptions, TakeEveryArgument) {
  const auto options = accepted({"--follow", "--format", "json", "--timeout", "2.5"});
  EXPECT_TRUE(options.follow);
  EXPECT_EQ(options.format, PrintFormat::json);
  EXPECT_EQ(options.timeout, Seconds{2.5});
  EXPECT_TRUE(options.hasTimeout);
  EXPECT_EQ(accepted({"--format=i3bar"}).format, PrintFormat::i3bar);
  EXPECT_EQ(accepted({"--format", "waybar"}).format, PrintFormat::waybar);
  EXPECT_EQ(accepted({"--format", "text"}).format, PrintFormat::text);
}

TEST(PrintOptions, AskForADiagnosisInEitherForm) {
  EXPECT_EQ(accepted({}).task, PrintTask::readings);
  EXPECT_EQ(accepted({"--diagnose"}).task, PrintTask::diagnosis);
  EXPECT_EQ(accepted({"--diagnose", "--json"}).task, PrintTask::diagnosisAsJson);
  EXPECT_EQ(accepted({"--json", "--diagnose"}).task, PrintTask::diagnosisAsJson);
}

TEST(PrintOptions, RefuseADiagnosisWithOptionsOfReadings) {
  for (const std::vector<const char*>& more : {std::vector<const char*>{"--follow"},
                                               {"--format", "json"},
                                               {"--timeout", "3"},
                                               {"--output", "x"}}) {
    std::vector<const char*> arguments = more;
    arguments.push_back("--diagnose");
    const ProgramAnswer answer = refused(arguments);
    EXPECT_EQ(answer.status, 2);
    EXPECT_EQ(
        answer.text,
        "vantora-print: --diagnose só aceita --json ao seu lado (veja vantora-print --help)\n");
  }
  const ProgramAnswer answer = refused({"--json"});
  EXPECT_EQ(answer.status, 2);
  EXPECT_THAT(answer.text, testing::HasSubstr("--json só vale com --diagnose"));
}

TEST(PrintOptions, TakeAFileForOpenMetrics) {
  const auto options = accepted({"--format", "openmetrics", "--output", "/run/v.prom"});
  EXPECT_EQ(options.format, PrintFormat::openMetrics);
  EXPECT_EQ(options.outputFile, "/run/v.prom");
  EXPECT_EQ(accepted({"--format", "openmetrics"}).outputFile, "");
}

TEST(PrintOptions, RefuseWhatTheyDoNotKnowInOneLineWithStatusTwo) {
  const std::vector<std::pair<std::vector<const char*>, const char*>> cases = {
      {{"--foo"}, "argumento desconhecido: --foo"},
      {{"extra"}, "argumento desconhecido: extra"},
      {{"--format", "xml"}, "formato desconhecido: \"xml\""},
      {{"--format", ""}, "formato desconhecido: \"\""},
      {{"--format"}, "falta o valor"},
      {{"--timeout"}, "falta o valor"},
      {{"--timeout", "0"}, "tempo inválido: \"0\" (mais de 0 e no máximo 86400 segundos)"},
      {{"--timeout", "-1"}, "tempo inválido: \"-1\""},
      {{"--timeout", "abc"}, "tempo inválido: \"abc\""},
      {{"--timeout", "nan"}, "tempo inválido: \"nan\""},
      {{"--timeout", "1e999"}, "tempo inválido"},
      {{"--timeout", "86401"}, "tempo inválido"},
      {{"--format", "json", "--format", "text"}, "duas vezes"},
      {{"--format", "json", "--output", "f"}, "--output só vale com --format openmetrics"},
      {{"--format", "openmetrics", "--output", ""}, "falta o nome do arquivo de --output"},
      {{"--follow=maybe"}, ""},
  };
  for (const auto& [arguments, expected] : cases) {
    const auto result = refused(arguments);
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.text, testing::StartsWith("vantora-print: "));
    EXPECT_THAT(result.text, testing::HasSubstr(expected));
    EXPECT_EQ(result.text.find('\n'), result.text.size() - 1);
  }
}

TEST(PrintOptions, ShowTheirHelpWithStatusZero) {
  const auto result = refused({"--help"});
  EXPECT_EQ(result.status, 0);
  EXPECT_THAT(result.text, testing::HasSubstr("Uso: vantora-print"));
  EXPECT_EQ(refused({"-h"}).text, result.text);
}

TEST(PrintOptions, ShowTheVersionWithStatusZero) {
  const auto result = refused({"--version"});
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(result.text, std::string("vantora-print ") + programVersion + "\n");
}

}  // namespace
}  // namespace vantora
