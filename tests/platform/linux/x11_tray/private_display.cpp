// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/private_display.hpp"

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>

namespace vantora::test {

PrivateDisplay::PrivateDisplay(int depth) {
  std::array<int, 2> output{};
  if (pipe2(output.data(), O_CLOEXEC) != 0) {
    return;
  }
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, "/dev/null", O_WRONLY, 0);
  // -noreset: the server would begin anew when its last client leaves.
  const std::string screen = "640x480x" + std::to_string(depth);
  std::array<std::string, 9> words{"Xvfb", "-displayfd", "1",   "-screen", "0",
                                   screen, "-nolisten",  "tcp", "-noreset"};
  std::array<char*, 10> arguments{};
  for (std::size_t index = 0; index < words.size(); ++index) {
    arguments[index] = words[index].data();
  }
  const int result =
      posix_spawnp(&server_, arguments[0], &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(output[1]);
  if (result != 0) {
    server_ = -1;
  }
  // It prints the number once it listens.
  std::string number;
  char byte = 0;
  while (read(output[0], &byte, 1) == 1 && byte != '\n') {
    number += byte;
  }
  close(output[0]);
  if (!number.empty()) {
    name_ = ":" + number;
  }
}

PrivateDisplay::~PrivateDisplay() {
  stop();
}

void PrivateDisplay::pause() {
  kill(server_, SIGSTOP);
  waitpid(server_, nullptr, WUNTRACED);
}

void PrivateDisplay::resume() {
  kill(server_, SIGCONT);
}

void PrivateDisplay::stop() {
  if (server_ > 0) {
    resume();
    // Politely: it removes its lock.
    kill(server_, SIGTERM);
    waitpid(server_, nullptr, 0);
    server_ = -1;
  }
}

}  // namespace vantora::test
