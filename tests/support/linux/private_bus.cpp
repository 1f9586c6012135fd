// SPDX-License-Identifier: MIT
#include "support/linux/private_bus.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace vantora::test {

PrivateBus::PrivateBus() {
  std::string pattern = (std::filesystem::temp_directory_path() / "vantora-bus-XXXXXX").string();
  if (mkdtemp(pattern.data()) != nullptr) {
    directory_ = pattern;
  }
  std::ofstream(directory_ + "/bus.conf")
      << "<busconfig><type>session</type><listen>" << address() << "</listen>"
      << "<auth>EXTERNAL</auth><policy context=\"default\">"
      << "<allow send_destination=\"*\" eavesdrop=\"true\"/><allow eavesdrop=\"true\"/>"
      << "<allow own=\"*\"/></policy></busconfig>\n";
  start();
}

PrivateBus::~PrivateBus() {
  stop();
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

void PrivateBus::start() {
  std::array<int, 2> output{};
  ASSERT_EQ(pipe2(output.data(), O_CLOEXEC), 0);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, output[1], STDOUT_FILENO);
  // It complains when it may not raise its limits, which does not matter here.
  const std::string log = directory_ + "/bus.log";
  posix_spawn_file_actions_addopen(&actions, STDERR_FILENO, log.c_str(),
                                   O_WRONLY | O_CREAT | O_APPEND, 0600);
  std::string program = "dbus-daemon";
  std::string configuration = "--config-file=" + directory_ + "/bus.conf";
  std::string print = "--print-address=1";
  std::string stay = "--nofork";
  std::array<char*, 5> arguments{program.data(), configuration.data(), print.data(), stay.data(),
                                 nullptr};
  const int result =
      posix_spawnp(&daemon_, program.c_str(), &actions, nullptr, arguments.data(), environ);
  posix_spawn_file_actions_destroy(&actions);
  close(output[1]);
  EXPECT_EQ(result, 0) << "dbus-daemon did not start";
  // It prints its address once it listens; a daemon that fails closes the pipe.
  char byte = 0;
  EXPECT_EQ(read(output[0], &byte, 1), 1) << "dbus-daemon gave no address, see " << log;
  close(output[0]);
}

void PrivateBus::stop() {
  if (daemon_ > 0) {
    kill(daemon_, SIGKILL);
    waitpid(daemon_, nullptr, 0);
    daemon_ = -1;
  }
}

}  // namespace vantora::test
