// SPDX-License-Identifier: MIT
#include "support/real_processes.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <sys/wait.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <ostream>

namespace vantora::test {
namespace {

int entriesOf(const char* folder) {
  int count = 0;
  for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(folder)) {
    ++count;
  }
  return count;
}

std::string quoted(const std::string& text) {
  std::string result = "'";
  for (const char character : text) {
    result += character == '\'' ? std::string("'\\''") : std::string(1, character);
  }
  return result + "'";
}

}  // namespace

ProcessCensus ProcessCensus::take() {
  siginfo_t found{};
  const bool hasChildren =
      waitid(P_ALL, 0, &found, WEXITED | WSTOPPED | WNOHANG | WNOWAIT) == 0 || errno != ECHILD;
  return {entriesOf("/proc/self/fd"), entriesOf("/proc/self/task"), hasChildren};
}

void PrintTo(const ProcessCensus& census, std::ostream* stream) {
  *stream << census.descriptors << " descriptors, " << census.threads << " threads, "
          << (census.hasChildren ? "children" : "no child");
}

bool isRunning(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/stat");
  std::string text;
  std::getline(file, text);
  // pid (name) state ...: proc(5)
  const std::size_t name = text.rfind(") ");
  return name != std::string::npos && text[name + 2] != 'Z' && text[name + 2] != 'X';
}

bool isIgnoringTermination(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  for (std::string line; std::getline(file, line);) {
    if (line.starts_with("SigIgn:")) {
      const unsigned long long ignored = std::stoull(line.substr(line.find(':') + 1), nullptr, 16);
      return (ignored >> (SIGTERM - 1) & 1U) != 0;
    }
  }
  return false;
}

bool hasClosedItsInput(int process) {
  const std::string descriptors = "/proc/" + std::to_string(process) + "/fd";
  std::error_code error;
  return std::filesystem::exists(descriptors + "/2", error) &&
         !std::filesystem::is_symlink(descriptors + "/0", error);
}

ChildProcessOptions helperOptions(const std::string& scenario, std::vector<std::string> arguments) {
  arguments.insert(arguments.begin(), scenario);
  return {VANTORA_CHILD_HELPER, std::move(arguments), {}, {}};
}

std::string HelperFolder::makeHelperScript(const std::string& scenario,
                                           const std::vector<std::string>& arguments) const {
  std::string path = path_ + "/" + scenario;
  std::ofstream file(path);
  file << "#!/bin/sh\nexec " << quoted(VANTORA_CHILD_HELPER) << " " << quoted(scenario);
  for (const std::string& argument : arguments) {
    file << " " << quoted(argument);
  }
  file << "\n";
  file.close();
  chmod(path.c_str(), S_IRWXU);
  return path;
}

RealProcesses::RealProcesses(TaskQueue* timers)
    : launcher_(std::make_unique<UvChildProcessLauncher>(
          loop_.raw(), timers != nullptr ? *timers : loop_.queue())) {
  // A loop that has seen a stream keeps one spare descriptor for as long as it lives
  // (libuv's way to answer connections when no descriptor is left). It is no leak, so it
  // is made before anything is counted.
  uv_pipe_t pipe;
  uv_pipe_init(&loop_.raw(), &pipe, 0);
  uv_close(reinterpret_cast<uv_handle_t*>(&pipe), nullptr);
  runReady();
}

void RealProcesses::runUntil(const std::function<bool()>& condition) {
  bool isLate = false;
  const TimerHandle watchdog =
      queue().runAfter(Seconds{10}, Seconds{0}, [&isLate] { isLate = true; });
  // Some of what is waited for, such as the end of a grandchild, wakes no loop.
  const TimerHandle look = queue().runEvery(turn, Seconds{0}, [] {});
  while (!isLate && !condition()) {
    uv_run(&loop_.raw(), UV_RUN_ONCE);
  }
  EXPECT_FALSE(isLate) << "nothing happened";
}

void RealProcesses::runUntilBackTo(const ProcessCensus& before,
                                   const std::function<void()>& passTime) {
  runUntil([&before, &passTime] {
    if (passTime) {
      passTime();
    }
    return ProcessCensus::take() == before;
  });
  EXPECT_EQ(ProcessCensus::take(), before);
}

void RealProcesses::runReady() {
  uv_run(&loop_.raw(), UV_RUN_NOWAIT);
}

}  // namespace vantora::test
