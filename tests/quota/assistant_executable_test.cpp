// SPDX-License-Identifier: MIT
#include "quota/assistant_executable.hpp"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>

#include "quota/claude/claude_executable_places.hpp"
#include "quota/codex/codex_executable_places.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

class AssistantExecutableTest : public testing::Test {
 protected:
  std::string makeExecutable(std::string_view name) {
    test::writeBytes(folder_ / name, "#!/bin/sh\n");
    fs::permissions(folder_ / name, fs::perms::owner_all);
    return (folder_ / name).string();
  }
  static std::optional<AssistantExecutable> found(const std::string& path) {
    return AssistantExecutable{fs::canonical(path).string(), path};
  }

  test::TemporaryFolder folder_;
};

TEST_F(AssistantExecutableTest, SearchesThePlacesInTheirOrder) {
  const std::array places{(folder_ / "missing").string(), makeExecutable("first"),
                          makeExecutable("second")};
  EXPECT_EQ(resolveAssistant(std::nullopt, places), found(places[1]));
}

TEST_F(AssistantExecutableTest, FindsNothingWhereNothingIs) {
  const std::array places{(folder_ / "missing").string()};
  EXPECT_EQ(resolveAssistant(std::nullopt, places), std::nullopt);
}

TEST_F(AssistantExecutableTest, TakesASelectedPathInsteadOfThePlaces) {
  const std::array places{makeExecutable("standard")};
  const std::string selected = makeExecutable("selected");
  EXPECT_EQ(resolveAssistant(selected, places), found(selected));
}

TEST_F(AssistantExecutableTest, DoesNotFallBackFromASelectedPathThatCannotBeUsed) {
  const std::array places{makeExecutable("standard")};
  test::writeBytes(folder_ / "plain", "");
  for (const std::string& selected : {(folder_ / "plain").string(), (folder_ / "missing").string(),
                                      folder_.path().string(), std::string()}) {
    EXPECT_EQ(resolveAssistant(selected, places), std::nullopt) << selected;
  }
}

TEST_F(AssistantExecutableTest, KeepsThePlaceOfALinkBesideTheFileThatItLeadsTo) {
  fs::create_directory(folder_ / "package");
  const std::string program = makeExecutable("package/program.js");
  fs::create_symlink("package/program.js", folder_ / "codex");
  const std::string link = (folder_ / "codex").string();
  EXPECT_EQ(resolveAssistant(link, {}),
            (AssistantExecutable{fs::canonical(program).string(), link}));
}

TEST_F(AssistantExecutableTest, TakesTheHighestVersionThatHasTheProgram) {
  // More than the folder's own order would bring into this one by chance.
  constexpr std::array ascending{"v9.11.2",  "v20.9.0", "v20.10.0", "v20.10.1", "v20.10.12",
                                 "v20.11.0", "v21.0.0", "v21.0.9",  "v22",      "v22.1.0"};
  for (const char* version : ascending) {
    fs::create_directories(folder_ / "node" / version / "bin");
  }
  fs::create_directories(folder_ / "node/v24.0.0/bin");
  const std::array places{(folder_ / "none/*/bin/codex").string(),
                          (folder_ / "node/*/bin/codex").string()};
  EXPECT_EQ(resolveAssistant(std::nullopt, places), std::nullopt);
  for (const char* version : ascending) {
    const std::string program = makeExecutable(std::string("node/") + version + "/bin/codex");
    EXPECT_EQ(resolveAssistant(std::nullopt, places), found(program)) << version;
  }
}

TEST_F(AssistantExecutableTest, PutsBothFoldersInFrontOfTheSearchPath) {
  EXPECT_EQ(searchPathFor({"/opt/lib/package/codex.js", "/opt/bin/codex"}, "/usr/bin:/bin"),
            "/opt/bin:/opt/lib/package:/usr/bin:/bin");
  EXPECT_EQ(searchPathFor({"/opt/bin/codex", "/opt/bin/codex"}, "/usr/bin"), "/opt/bin:/usr/bin");
}

TEST_F(AssistantExecutableTest, PutsTheFoldersInFrontOfTheStandardSearchWhereThereIsNoPath) {
  EXPECT_EQ(searchPathFor({"/opt/bin/codex", "/opt/bin/codex"}, ""), "/opt/bin:/bin:/usr/bin");
}

TEST_F(AssistantExecutableTest, KnowsThePlacesOfEachSystem) {
  EXPECT_THAT(CodexExecutablePlaces::onLinux("/home/ana"),
              ElementsAre("/home/ana/.local/bin/codex", "/home/ana/.npm-global/bin/codex",
                          "/home/ana/.local/share/pnpm/bin/codex",
                          "/home/ana/.local/share/pnpm/codex", "/home/ana/.bun/bin/codex",
                          "/home/ana/.volta/bin/codex", "/home/ana/.nvm/versions/node/*/bin/codex",
                          "/home/linuxbrew/.linuxbrew/bin/codex", "/usr/local/bin/codex",
                          "/usr/bin/codex"));
  std::vector<std::string> claude = linuxPlaces("/home/ana", "claude");
  EXPECT_THAT(claude, testing::Contains("/usr/bin/claude"));
  claude.emplace_back("/home/ana/.claude/local/claude");
  EXPECT_EQ(ClaudeExecutablePlaces::onLinux("/home/ana"), claude);
  EXPECT_THAT(CodexExecutablePlaces::onMacOS(),
              ElementsAre("/Applications/ChatGPT.app/Contents/Resources/codex-cli/CodexCLI.app/"
                          "Contents/MacOS/codex",
                          "/opt/homebrew/bin/codex", "/usr/local/bin/codex"));
  EXPECT_THAT(ClaudeExecutablePlaces::onMacOS("/Users/ana"),
              ElementsAre("/Users/ana/.local/bin/claude", "/opt/homebrew/bin/claude",
                          "/usr/local/bin/claude", "/Users/ana/.claude/local/claude"));
}

}  // namespace
}  // namespace vantora
