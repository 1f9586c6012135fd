// SPDX-License-Identifier: MIT
//
// The guard of a program that cannot end its children itself.
#include "process/child_guard.hpp"

#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>

#include "runtime/unique_fd.hpp"

namespace vantora {
namespace {

// A program in a process group of its own that starts a guard, and a child in another group
// that ignores SIGTERM. The child holds one end of a pipe, so that the other end shows when
// it is gone. Processes whose parent has ended become the test's own children.
struct Situation {
  bool isWatched = false;
  bool isDismissed = false;
  bool isProgramLeft = false;
};

class GuardedProgram {
 public:
  explicit GuardedProgram(const Situation& situation) {
    prctl(PR_SET_CHILD_SUBREAPER, 1);
    std::array<int, 2> ends{};
    EXPECT_EQ(pipe(ends.data()), 0);
    program_ = fork();
    if (program_ == 0) {
      close(ends[0]);
      run(ends[1], situation);
    }
    close(ends[1]);
    pipe_.reset(ends[0]);
    EXPECT_EQ(read(pipe_.get(), &child_, sizeof child_), static_cast<ssize_t>(sizeof child_));
  }
  ~GuardedProgram() {
    kill(child_, SIGKILL);
    kill(program_, SIGKILL);
    while (waitpid(-1, nullptr, 0) > 0 || errno == EINTR) {
    }
    prctl(PR_SET_CHILD_SUBREAPER, 0);
  }
  GuardedProgram(const GuardedProgram&) = delete;
  GuardedProgram& operator=(const GuardedProgram&) = delete;

  [[nodiscard]] pid_t id() const { return program_; }

  // Whether the child was killed; waits for its end.
  [[nodiscard]] bool isChildKilled() const {
    char byte = 0;
    const bool hasEnded = read(pipe_.get(), &byte, 1) == 0;
    int status = 0;
    waitpid(program_, nullptr, 0);  // from now on the child is the test's
    waitpid(child_, &status, 0);
    return hasEnded && WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
  }
  // Whether the child goes on once program and guard have ended; waits for both.
  [[nodiscard]] bool isChildLeftAlone() const {
    siginfo_t info{};
    for (int ended = 0; ended < 2; ++ended) {
      const pid_t one = waitpid(-1, nullptr, 0);
      if (one <= 0 || one == child_) {
        return false;
      }
    }
    return waitid(P_PID, static_cast<id_t>(child_), &info, WEXITED | WNOHANG | WNOWAIT) == 0 &&
           info.si_pid == 0;
  }

 private:
  [[noreturn]] static void run(int pipe, const Situation& situation) {
    setpgid(0, 0);
    std::signal(SIGTERM, SIG_IGN);
    // Before the guard: a child that executes no program would hold the guard's socket.
    const pid_t child = fork();
    if (child == 0) {
      setpgid(0, 0);
      alarm(20);
      while (true) {
        pause();
      }
    }
    setpgid(child, child);
    ChildGuard guard;
    if (guard.start() != 0) {
      _exit(1);
    }
    if (situation.isWatched) {
      guard.watch(child);
    }
    if (situation.isDismissed) {
      guard.dismiss();
    }
    (void)!write(pipe, &child, sizeof child);
    close(pipe);
    while (situation.isProgramLeft) {
      pause();
    }
    _exit(0);
  }

  pid_t program_ = 0;
  pid_t child_ = 0;
  UniqueFd pipe_;
};

TEST(ChildGuard, EndsTheGroupOfAProgramThatEndedWithoutDismissingIt) {
  const GuardedProgram program({.isWatched = true});
  EXPECT_TRUE(program.isChildKilled());
}

TEST(ChildGuard, EndsTheGroupOfAProgramThatWasKilled) {
  const GuardedProgram program({.isWatched = true, .isProgramLeft = true});
  kill(program.id(), SIGKILL);
  EXPECT_TRUE(program.isChildKilled());
}

TEST(ChildGuard, OutlivesTheKillOfTheProgramsWholeGroup) {
  const GuardedProgram program({.isWatched = true, .isProgramLeft = true});
  kill(-program.id(), SIGKILL);
  EXPECT_TRUE(program.isChildKilled());
}

TEST(ChildGuard, EndsNothingOnceItIsDismissed) {
  const GuardedProgram program({.isWatched = true, .isDismissed = true});
  EXPECT_TRUE(program.isChildLeftAlone());
}

TEST(ChildGuard, EndsNothingBeforeItWatchesAGroup) {
  const GuardedProgram program({});
  EXPECT_TRUE(program.isChildLeftAlone());
}

}  // namespace
}  // namespace vantora
