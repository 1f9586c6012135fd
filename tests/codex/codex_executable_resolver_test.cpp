// SPDX-License-Identifier: MIT
#include "codex/codex_executable_resolver.hpp"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

class CodexExecutableResolverTest : public testing::Test {
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

TEST_F(CodexExecutableResolverTest, SearchesThePlacesInTheirOrder) {
  const std::array places{(folder_ / "missing").string(), makeExecutable("first"),
                          makeExecutable("second")};
  EXPECT_EQ(CodexExecutableResolver::resolve(std::nullopt, places), resolved(places[1]));
}

TEST_F(CodexExecutableResolverTest, FindsNothingWhereNothingIs) {
  const std::array places{(folder_ / "missing").string()};
  EXPECT_EQ(CodexExecutableResolver::resolve(std::nullopt, places), std::nullopt);
}

TEST_F(CodexExecutableResolverTest, TakesAChosenPathInsteadOfThePlaces) {
  const std::array places{makeExecutable("standard")};
  const std::string chosen = makeExecutable("chosen");
  EXPECT_EQ(CodexExecutableResolver::resolve(chosen, places), resolved(chosen));
}

TEST_F(CodexExecutableResolverTest, DoesNotFallBackFromAChosenPathThatCannotBeUsed) {
  const std::array places{makeExecutable("standard")};
  test::writeBytes(folder_ / "plain", "");
  EXPECT_EQ(CodexExecutableResolver::resolve((folder_ / "plain").string(), places), std::nullopt);
  EXPECT_EQ(CodexExecutableResolver::resolve((folder_ / "missing").string(), places), std::nullopt);
  EXPECT_EQ(CodexExecutableResolver::resolve(folder_.path().string(), places), std::nullopt);
  EXPECT_EQ(CodexExecutableResolver::resolve(std::string(), places), std::nullopt);
}

TEST_F(CodexExecutableResolverTest, KnowsThePlacesOfEachSystem) {
  EXPECT_THAT(CodexExecutableResolver::placesOnLinux("/home/ana"),
              testing::ElementsAre("/home/ana/.local/bin/codex", "/usr/local/bin/codex",
                                   "/usr/bin/codex", "/home/linuxbrew/.linuxbrew/bin/codex"));
  EXPECT_THAT(CodexExecutableResolver::placesOnMacOS(),
              testing::ElementsAre("/Applications/ChatGPT.app/Contents/Resources/codex-cli/"
                                   "CodexCLI.app/Contents/MacOS/codex",
                                   "/opt/homebrew/bin/codex", "/usr/local/bin/codex"));
}

}  // namespace
}  // namespace vantora
