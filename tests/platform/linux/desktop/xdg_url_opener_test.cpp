// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/xdg_url_opener.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "runtime/thread_hints.hpp"
#include "runtime/unique_fd.hpp"
#include "runtime/uv_loop.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

// A program that writes what `command` prints, by default its arguments, to the file "seen".
std::string makeProgram(const test::TemporaryFolder& folder,
                        const std::string& command = "printf '%s' \"$*\"") {
  const auto path = folder / "browser";
  const std::string seen = (folder / "seen").string();
  test::writeBytes(path, "#!/bin/sh\n{ " + command + "; } > \"" + seen + ".part\"\nmv \"" + seen +
                             ".part\" \"" + seen + "\"\n");
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

std::string printedBy(const std::string& command) {
  const test::TemporaryFolder folder;
  UvLoop loop;
  XdgUrlOpener opener(loop.raw(), makeProgram(folder, command));
  opener.open("https://auth.openai.com/");
  while (!std::filesystem::exists(folder / "seen")) {
    uv_run(&loop.raw(), UV_RUN_NOWAIT);
  }
  return contentOf(folder / "seen");
}

// The browser would keep the slack for life.
TEST(XdgUrlOpener, KeepsItsTimerSlackFromTheBrowser) {
  setTimerSlackOfThisThread(Seconds{0.25});
  EXPECT_EQ(printedBy("cat /proc/self/timerslack_ns"), "50000\n");
  EXPECT_EQ(prctl(PR_GET_TIMERSLACK, 0, 0, 0, 0), 250'000'000);
  setTimerSlackOfThisThread(Seconds{0});
}

TEST(XdgUrlOpener, KeepsDescriptorsThatItsCallerLeftOpenFromTheBrowser) {
  const UniqueFd inherited(::open("/dev/null", O_RDONLY));
  const std::string path = "/proc/self/fd/" + std::to_string(inherited.get());
  EXPECT_EQ(printedBy("readlink " + path + " || echo closed"), "closed\n");
}

TEST(XdgUrlOpener, StartsTheBrowserInASessionOfItsOwn) {
  // Fields 1 and 6 of proc_pid_stat(5): the process and its session.
  EXPECT_EQ(printedBy("read -r pid name state parent group session rest < /proc/$$/stat; "
                      "[ $session = $$ ] && echo leads"),
            "leads\n");
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
