// SPDX-License-Identifier: MIT
#include "claude/claude_executable_resolver.hpp"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

class ClaudeExecutableResolverTest : public testing::Test {
 protected:
  std::string makeExecutable(std::string_view name) {
    test::writeBytes(folder_ / name, "#!/bin/sh\n");
    fs::permissions(folder_ / name, fs::perms::owner_all);
    return (folder_ / name).string();
  }
  [[nodiscard]] static std::string resolved(const std::string& path) {
    return fs::canonical(path).string();
  }

  test::TemporaryFolder folder_;
};

TEST_F(ClaudeExecutableResolverTest, SearchesThePlacesInTheirOrder) {
  const std::array places{(folder_ / "missing").string(), makeExecutable("first"),
                          makeExecutable("second")};
  EXPECT_EQ(ClaudeExecutableResolver::resolve(std::nullopt, places), resolved(places[1]));
}

TEST_F(ClaudeExecutableResolverTest, FindsNothingWhereNothingIs) {
  const std::array places{(folder_ / "missing").string()};
  EXPECT_EQ(ClaudeExecutableResolver::resolve(std::nullopt, places), std::nullopt);
}

TEST_F(ClaudeExecutableResolverTest, TakesAChosenPathInsteadOfThePlaces) {
  const std::array places{makeExecutable("standard")};
  const std::string chosen = makeExecutable("chosen");
  EXPECT_EQ(ClaudeExecutableResolver::resolve(chosen, places), resolved(chosen));
}

TEST_F(ClaudeExecutableResolverTest, DoesNotFallBackFromAChosenPathThatCannotBeUsed) {
  const std::array places{makeExecutable("standard")};
  test::writeBytes(folder_ / "plain", "");
  EXPECT_EQ(ClaudeExecutableResolver::resolve((folder_ / "plain").string(), places), std::nullopt);
  EXPECT_EQ(ClaudeExecutableResolver::resolve((folder_ / "missing").string(), places),
            std::nullopt);
  EXPECT_EQ(ClaudeExecutableResolver::resolve(folder_.path().string(), places), std::nullopt);
  EXPECT_EQ(ClaudeExecutableResolver::resolve(std::string(), places), std::nullopt);
}

TEST_F(ClaudeExecutableResolverTest, KnowsThePlacesOfEachSystem) {
  EXPECT_THAT(
      ClaudeExecutableResolver::placesOnLinux("/home/ana"),
      testing::ElementsAre("/home/ana/.local/bin/claude", "/home/linuxbrew/.linuxbrew/bin/claude",
                           "/usr/local/bin/claude", "/home/ana/.claude/local/claude"));
  EXPECT_THAT(ClaudeExecutableResolver::placesOnMacOS("/Users/ana"),
              testing::ElementsAre("/Users/ana/.local/bin/claude", "/opt/homebrew/bin/claude",
                                   "/usr/local/bin/claude", "/Users/ana/.claude/local/claude"));
}

}  // namespace
}  // namespace vantora
