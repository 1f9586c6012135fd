// SPDX-License-Identifier: MIT
#include "app/linux/agent_arguments.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "model/version.hpp"

namespace vantora {
namespace {

std::variant<AgentTask, ProgramAnswer> parse(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "vantora");
  return readAgentArguments(static_cast<int>(arguments.size()), arguments.data());
}

std::optional<AgentTask> task(std::vector<const char*> arguments) {
  const auto parsed = parse(std::move(arguments));
  const auto* found = std::get_if<AgentTask>(&parsed);
  return found != nullptr ? std::optional(*found) : std::nullopt;
}

std::optional<ProgramAnswer> read(std::vector<const char*> arguments) {
  const auto parsed = parse(std::move(arguments));
  const auto* answer = std::get_if<ProgramAnswer>(&parsed);
  return answer != nullptr ? std::optional(*answer) : std::nullopt;
}

TEST(AgentArguments, LetTheAgentRunWhereThereAreNone) {
  EXPECT_EQ(task({}), AgentTask::run);
  EXPECT_EQ(std::get<AgentTask>(readAgentArguments(0, nullptr)), AgentTask::run);
}

TEST(AgentArguments, AskForADiagnosisInEitherForm) {
  EXPECT_EQ(task({"--diagnose"}), AgentTask::diagnose);
  EXPECT_EQ(task({"--diagnose", "--json"}), AgentTask::diagnoseAsJson);
  EXPECT_EQ(task({"--json", "--diagnose"}), AgentTask::diagnoseAsJson);
}

TEST(AgentArguments, TakeJsonWithADiagnosisAlone) {
  const auto answer = read({"--json"});
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 2);
  EXPECT_EQ(answer->text, "vantora: --json só vale com --diagnose (veja vantora --help)\n");
}

TEST(AgentArguments, NameTheOneThatIsTooMany) {
  for (const std::vector<const char*>& arguments :
       {std::vector<const char*>{"--diagnose", "--version"},
        {"--help", "--version"},
        {"--diagnose", "--json", "--json"}}) {
    const auto answer = read(arguments);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 2);
    EXPECT_EQ(answer->text, std::string("vantora: argumento demais: ") + arguments[1] +
                                " (veja vantora --help)\n");
  }
}

TEST(AgentArguments, ShowTheHelp) {
  for (const char* option : {"--help", "-h"}) {
    const auto answer = read({option});
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 0);
    EXPECT_THAT(answer->text,
                testing::StartsWith("Uso: vantora [--diagnose [--json]] [--help] [--version]\n"));
  }
}

TEST(AgentArguments, ShowTheVersion) {
  const auto answer = read({"--version"});
  ASSERT_TRUE(answer);
  EXPECT_EQ(answer->status, 0);
  EXPECT_EQ(answer->text, std::string("vantora ") + programVersion + "\n");
}

TEST(AgentArguments, NameTheFirstOneThatIsUnknownInOneLine) {
  const std::vector<std::pair<std::vector<const char*>, const char*>> cases = {
      {{"--foo"}, "--foo"},
      {{"x", "--help"}, "x"},
      {{"--version", "y"}, "y"},
      {{""}, ""},
  };
  for (const auto& [arguments, named] : cases) {
    const auto answer = read(arguments);
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 2);
    EXPECT_EQ(answer->text, std::string("vantora: argumento desconhecido: ") + named +
                                " (veja vantora --help)\n");
  }
}

}  // namespace
}  // namespace vantora
