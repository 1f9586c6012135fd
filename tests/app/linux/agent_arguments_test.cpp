// SPDX-License-Identifier: MIT
#include "app/linux/agent_arguments.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "model/version.hpp"

namespace vantora {
namespace {

std::optional<ProgramAnswer> read(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), "vantora");
  return readAgentArguments(static_cast<int>(arguments.size()), arguments.data());
}

TEST(AgentArguments, LetTheAgentRunWhereThereAreNone) {
  EXPECT_FALSE(read({}));
  EXPECT_FALSE(readAgentArguments(0, nullptr));
}

TEST(AgentArguments, ShowTheHelp) {
  for (const char* option : {"--help", "-h"}) {
    const auto answer = read({option});
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->status, 0);
    EXPECT_THAT(answer->text, testing::StartsWith("Uso: vantora [--help] [--version]\n"));
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
