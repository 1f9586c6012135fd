// SPDX-License-Identifier: MIT
#include "process/run_program.hpp"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cerrno>
#include <csignal>

namespace vantora {
namespace {

constexpr std::chrono::milliseconds ample{60'000};

std::optional<std::string> runScript(const std::string& script,
                                     std::chrono::milliseconds timeout = ample) {
  return runProgram({"/bin/sh", "-c", script}, timeout);
}

TEST(RunProgram, ReturnsWhatTheProgramWrote) {
  EXPECT_EQ(runProgram({"/bin/echo", "a b", "c"}, ample), "a b c\n");
  EXPECT_EQ(runScript(":"), "");
}

TEST(RunProgram, ReturnsMoreThanAPipeHolds) {
  const auto output = runScript("head -c 1000000 /dev/zero");
  ASSERT_TRUE(output);
  EXPECT_EQ(output->size(), 1'000'000U);
}

TEST(RunProgram, ReturnsNothingOfAProgramThatFails) {
  EXPECT_EQ(runProgram({"/nowhere/program"}, ample), std::nullopt);
  EXPECT_EQ(runScript("echo text; exit 1"), std::nullopt);
  EXPECT_EQ(runScript("echo text; kill -SEGV $$"), std::nullopt);
}

TEST(RunProgram, KillsAProgramThatTakesTooLong) {
  EXPECT_EQ(runScript("sleep 600", std::chrono::milliseconds{1}), std::nullopt);
  // One that has closed its output as well.
  EXPECT_EQ(runScript("exec >&-; sleep 600", std::chrono::milliseconds{50}), std::nullopt);
}

TEST(RunProgram, EndsAProgramThatWritesWithoutEnd) {
  EXPECT_EQ(runScript("cat /dev/zero"), std::nullopt);
}

TEST(RunProgram, GivesTheProgramNothingToRead) {
  EXPECT_EQ(runScript("cat"), "");
}

TEST(RunProgram, WorksInAProgramThatIgnoresTheEndOfItsChildren) {
  const auto before = std::signal(SIGCHLD, SIG_IGN);
  EXPECT_EQ(runScript("echo seen"), "seen\n");
  std::signal(SIGCHLD, before);
}

TEST(RunProgram, LeavesNoChildBehind) {
  EXPECT_EQ(runScript("sleep 600", std::chrono::milliseconds{1}), std::nullopt);
  EXPECT_EQ(::waitpid(-1, nullptr, WNOHANG), -1);
  EXPECT_EQ(errno, ECHILD);
}

}  // namespace
}  // namespace vantora
