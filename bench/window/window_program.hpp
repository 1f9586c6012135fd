// SPDX-License-Identifier: MIT
//
// A window's program with pipes on its standard input and output, as the agent starts it.
#pragma once

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace vantora::bench {

[[noreturn]] inline void stop(const std::string& why) {
  std::fprintf(stderr, "bench-window: %s\n", why.c_str());
  std::exit(2);
}

class Program {
 public:
  explicit Program(const std::string& path) {
    int input[2];
    int output[2];
    if (::pipe2(input, O_CLOEXEC) != 0 || ::pipe2(output, O_CLOEXEC) != 0) {
      stop("no pipes");
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, input[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
    posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
    std::string name = path;
    char* arguments[] = {name.data(), nullptr};
    if (::posix_spawn(&id_, path.c_str(), &actions, nullptr, arguments, environ) != 0) {
      stop("cannot start " + path);
    }
    posix_spawn_file_actions_destroy(&actions);
    ::close(input[0]);
    ::close(output[1]);
    input_ = input[1];
    output_ = output[0];
  }
  ~Program() {
    ::close(input_);
    ::close(output_);
    ::kill(id_, SIGTERM);
    ::waitpid(id_, nullptr, 0);
  }
  Program(const Program&) = delete;
  Program& operator=(const Program&) = delete;

  [[nodiscard]] pid_t id() const { return id_; }

  // Whether it has written something within half a millisecond, its "ready".
  [[nodiscard]] bool hasSpoken() const {
    pollfd end{output_, POLLIN, 0};
    const timespec wait{0, 500'000};
    return ::ppoll(&end, 1, &wait, nullptr) > 0 && (end.revents & POLLIN) != 0;
  }
  // What it has written is of no interest.
  void hear() const {
    char bytes[4096];
    while (hasSpoken() && ::read(output_, bytes, sizeof bytes) > 0) {
    }
  }
  void tell(const std::string& line) const {
    if (::write(input_, line.data(), line.size()) != static_cast<ssize_t>(line.size())) {
      stop("the window does not listen");
    }
  }

 private:
  pid_t id_ = 0;
  int input_ = -1;
  int output_ = -1;
};

}  // namespace vantora::bench
