// SPDX-License-Identifier: MIT
#include "process/child_guard.hpp"

#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>
#include <uv.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <string_view>

#include "process/guard_process.hpp"
#include "process/no_sigpipe_socket.hpp"
#include "runtime/thread_hints.hpp"

namespace vantora {
namespace {

// A message to the guard is the number of the group, or this: exit.
constexpr pid_t dismissal = 0;

void send(int socket, pid_t message) {
  // A guard that was killed is no longer there to receive it.
  (void)sendWithoutSigpipe(socket, {reinterpret_cast<const char*>(&message), sizeof message});
}

// The guard. After a fork in a program that may have threads: only what signal-safety(7)
// allows, and no memory from the heap.

bool receive(int socket, pid_t& message) {
  ssize_t length = 0;
  do {
    length = ::read(socket, &message, sizeof message);
  } while (length < 0 && errno == EINTR);
  return length == sizeof message;
}

void endGroup(pid_t group) {
  constexpr int waitMilliseconds = 5;
  constexpr int waits = 50;
  kill(-group, SIGTERM);
  for (int wait = 0; wait < waits; ++wait) {
    if (kill(-group, 0) != 0) {
      return;
    }
    poll(nullptr, 0, waitMilliseconds);
  }
  kill(-group, SIGKILL);
}

[[noreturn]] void guard(int socket) {
  // A reader that waits for the end of one of the program's streams must not wait for the
  // guard's copy of it.
  dup2(socket, STDIN_FILENO);
  becomeGuardProcess();
  pid_t group = dismissal;
  pid_t message = dismissal;
  while (receive(STDIN_FILENO, message)) {
    if (message == dismissal) {
      _exit(0);
    }
    group = message;
  }
  if (group != dismissal) {
    endGroup(group);
  }
  _exit(0);
}

// Forked twice, so that the guard is no child that would have to be reaped. The session is for
// a signal to the program's process group, which must not reach the guard, not even before it
// has begun.
int startGuard(int socket) {
  const pid_t between = fork();
  if (between < 0) {
    return uv_translate_sys_error(errno);
  }
  if (between == 0) {
    setsid();
    const pid_t guarding = fork();
    if (guarding == 0) {
      guard(socket);
    }
    _exit(guarding < 0 ? 1 : 0);
  }
  int status = 0;
  while (waitpid(between, &status, 0) < 0) {
    if (errno != EINTR) {  // SIGCHLD is ignored: no status
      return 0;
    }
  }
  return status == 0 ? 0 : UV_EAGAIN;
}

}  // namespace

int ChildGuard::start() {
  std::array<uv_os_sock_t, 2> ends{};
  if (const int status = uv_socketpair(SOCK_STREAM, 0, ends.data(), 0, 0); status != 0) {
    return status;
  }
  socket_.reset(ends[0]);
  const UniqueFd itsEnd(ends[1]);
  preventSigpipe(socket_.get());
  // The guard's waits are short. It blocks all signals: it ends with the program, not with a
  // signal that was meant for both.
  const DefaultTimerSlack slackOfGuard;
  sigset_t all;
  sigset_t before;
  sigfillset(&all);
  pthread_sigmask(SIG_SETMASK, &all, &before);
  const int status = startGuard(itsEnd.get());
  pthread_sigmask(SIG_SETMASK, &before, nullptr);
  if (status != 0) {
    socket_.reset();
  }
  return status;
}

void ChildGuard::watch(pid_t group) {
  if (socket_.get() >= 0) {
    send(socket_.get(), group);
  }
}

void ChildGuard::dismiss() {
  if (socket_.get() >= 0) {
    send(socket_.get(), dismissal);
    socket_.reset();
  }
}

}  // namespace vantora
