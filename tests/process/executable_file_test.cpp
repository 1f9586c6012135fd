// SPDX-License-Identifier: MIT
#include "process/executable_file.hpp"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>

#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;

class ExecutableFile : public testing::Test {
 protected:
  [[nodiscard]] std::string path(std::string_view name) const { return (folder_ / name).string(); }

  std::string makeFile(std::string_view name, fs::perms permissions) {
    test::writeBytes(folder_ / name, "#!/bin/sh\n");
    fs::permissions(folder_ / name, permissions);
    return path(name);
  }
  std::string makeExecutable(std::string_view name) { return makeFile(name, fs::perms::owner_all); }

  test::TemporaryFolder folder_;
};

TEST_F(ExecutableFile, IsTheFirstCandidateThatMayBeExecuted) {
  const std::array candidates{path("missing"),
                              makeFile("plain", fs::perms::owner_read | fs::perms::owner_write),
                              makeExecutable("first"), makeExecutable("second")};
  EXPECT_EQ(firstExecutableFile(candidates), fs::canonical(candidates[2]).string());
}

TEST_F(ExecutableFile, IsNothingWithoutCandidates) {
  EXPECT_EQ(firstExecutableFile({}), std::nullopt);
}

TEST_F(ExecutableFile, IsNoFolder) {
  fs::create_directory(folder_ / "program");
  const std::array candidates{path("program")};
  EXPECT_EQ(firstExecutableFile(candidates), std::nullopt);
}

TEST_F(ExecutableFile, IsWhatItsSymbolicLinksLeadTo) {
  fs::create_directory(folder_ / "bin");
  const std::string program = makeExecutable("program");
  fs::create_symlink("../program", folder_ / "bin/link");
  fs::create_symlink(path("bin"), folder_ / "shortcut");
  const std::array candidates{path("shortcut/link")};
  EXPECT_EQ(firstExecutableFile(candidates), fs::canonical(program).string());
}

TEST_F(ExecutableFile, IsNoLinkThatLeadsNowhereOrInACircle) {
  fs::create_symlink("gone", folder_ / "dangling");
  fs::create_symlink("circle", folder_ / "circle");
  const std::array candidates{path("dangling"), path("circle")};
  EXPECT_EQ(firstExecutableFile(candidates), std::nullopt);
}

TEST_F(ExecutableFile, IsNoEmptyOrBrokenPath) {
  const std::array candidates{std::string(), std::string("\0x", 2), std::string(100'000, 'x'),
                              makeExecutable("program") + "/below"};
  EXPECT_EQ(firstExecutableFile(candidates), std::nullopt);
}

TEST(NeedsShell, IsFalseForProgramsScriptsAndFilesThatAreNotThere) {
  const test::TemporaryFolder folder;
  const std::string file = (folder / "program").string();
  for (const std::string_view start :
       {std::string_view("#!/bin/sh\n"),
        std::string_view("\x7f"
                         "ELF\x02"),
        std::string_view("\xcf\xfa\xed\xfe\x0c"), std::string_view("\xce\xfa\xed\xfe"),
        std::string_view("\xca\xfe\xba\xbe\0", 5), std::string_view("\xca\xfe\xba\xbf")}) {
    test::writeBytes(file, start);
    EXPECT_FALSE(needsShell(file));
  }
  EXPECT_FALSE(needsShell((folder / "missing").string()));
}

TEST(NeedsShell, IsTrueForEverythingElse) {
  const test::TemporaryFolder folder;
  const std::string file = (folder / "program").string();
  for (const std::string_view start : {"", "#", "# a comment\n", "exec node\n",
                                       "\x7f"
                                       "EL",
                                       " #!/bin/sh\n"}) {
    test::writeBytes(file, start);
    EXPECT_TRUE(needsShell(file)) << start;
  }
}

}  // namespace
}  // namespace vantora
