// SPDX-License-Identifier: MIT
#include "control/control.hpp"

#include <fcntl.h>
#include <sys/prctl.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "control/commands.hpp"
#include "dispatch/main_run_loop.hpp"
#include "machine/machine.hpp"

namespace standin {
namespace {

void answer(int descriptor, const std::string& line) {
  const std::string reply = runCommand(line) + "\n";
  std::size_t sent = 0;
  while (sent < reply.size()) {
    const ssize_t count = write(descriptor, reply.data() + sent, reply.size() - sent);
    if (count <= 0) {
      std::exit(EXIT_FAILURE);
    }
    sent += static_cast<std::size_t>(count);
  }
}

void receive(int descriptor, std::string& pending) {
  char bytes[4096];
  const ssize_t count = read(descriptor, bytes, sizeof bytes);
  if (count <= 0) {
    // The script has nothing more to say.
    MainRunLoop::watchNoMore(descriptor);
    return;
  }
  pending.append(bytes, static_cast<std::size_t>(count));
  for (std::size_t end = pending.find('\n'); end != std::string::npos; end = pending.find('\n')) {
    const std::string line = pending.substr(0, end);
    pending.erase(0, end + 1);
    answer(descriptor, line);
  }
}

}  // namespace

void listenForCommands() {
  static bool hasBegun = false;
  if (hasBegun) {
    return;
  }
  hasBegun = true;
  const char* number = std::getenv("STAND_IN_CONTROL");
  if (number == nullptr) {
    return;
  }
  std::atexit(&requireBalance);
  // Whatever happens to the script, nothing of its is left running.
  prctl(PR_SET_PDEATHSIG, SIGKILL);
  const int descriptor = std::atoi(number);
  fcntl(descriptor, F_SETFD, FD_CLOEXEC);
  static auto* const pending = new std::string;
  MainRunLoop::watch(descriptor, [descriptor] { receive(descriptor, *pending); });
}

}  // namespace standin
