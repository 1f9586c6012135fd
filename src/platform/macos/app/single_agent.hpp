// SPDX-License-Identifier: MIT
//
// One agent for each user, however it is started: the system sees to that when the
// application is opened, but not when its executable is started or with `open -n`.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>

namespace vantora {

/// Lives on the main thread, as long as the program.
class SingleAgent {
 public:
  /// Takes the lock "agent.lock" in the folder, which is made when there is none. The kernel
  /// gives the lock back with the process, however that ends.
  explicit SingleAgent(const std::filesystem::path& folder);
  ~SingleAgent();
  SingleAgent(const SingleAgent&) = delete;
  SingleAgent& operator=(const SingleAgent&) = delete;

  /// Whether this is the agent. Where no lock can be had, as on a full disk, it is.
  [[nodiscard]] bool isFirst() const;

  /// Whether another process is the agent of the folder. Takes nothing and makes nothing.
  [[nodiscard]] static bool isRunning(const std::filesystem::path& folder);

  /// The agent's side: calls `open` on the main thread when another start asks for the
  /// application to open.
  void answer(std::function<void()> open);

  /// The other side: asks the agent, and whether it answered within two seconds.
  [[nodiscard]] static bool ask();

 private:
  struct Answering;
  int lock_ = -1;
  bool isFirst_ = true;
  std::unique_ptr<Answering> answering_;
};

}  // namespace vantora
