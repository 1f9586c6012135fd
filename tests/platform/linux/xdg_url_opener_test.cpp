// SPDX-License-Identifier: MIT
#include "platform/linux/xdg_url_opener.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "runtime/uv_loop.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

// A program that writes down its arguments and its process group, then itself ends.
std::string makeProgram(const test::TemporaryFolder& folder) {
  const auto path = folder / "browser";
  test::writeBytes(path, "#!/bin/sh\nprintf '%s' \"$*\" > \"" + (folder / "seen").string() +
                             ".part\"\nmv \"" + (folder / "seen").string() + ".part\" \"" +
                             (folder / "seen").string() + "\"\n");
  std::filesystem::permissions(path, std::filesystem::perms::owner_all);
  return path.string();
}

std::string contentOf(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

TEST(XdgUrlOpener, HandsThePageOverAndReapsTheProgram) {
  const test::TemporaryFolder folder;
  UvLoop loop;
  XdgUrlOpener opener(loop.raw(), makeProgram(folder));
  opener.open("https://auth.openai.com/a?b=c&d=$(e)");
  while (!std::filesystem::exists(folder / "seen")) {
    uv_run(&loop.raw(), UV_RUN_NOWAIT);
  }
  EXPECT_EQ(contentOf(folder / "seen"), "https://auth.openai.com/a?b=c&d=$(e)");
}

TEST(XdgUrlOpener, LeavesTheUserWhereTheyAreWithoutAProgram) {
  UvLoop loop;
  XdgUrlOpener opener(loop.raw(), "/no/such/program");
  opener.open("https://auth.openai.com/");
  uv_run(&loop.raw(), UV_RUN_NOWAIT);
}

TEST(XdgUrlOpener, TakesNoOptionForAPage) {
  const test::TemporaryFolder folder;
  UvLoop loop;
  XdgUrlOpener opener(loop.raw(), makeProgram(folder));
  opener.open("--version");
  opener.open("");
  uv_run(&loop.raw(), UV_RUN_NOWAIT);
  EXPECT_FALSE(std::filesystem::exists(folder / "seen"));
}

}  // namespace
}  // namespace vantora
