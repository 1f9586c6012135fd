// SPDX-License-Identifier: MIT
//
// Real child processes for tests: the helper executable (support/child_helper.cpp) on a
// loop that a test turns until something happened, and a count of what this process
// holds, to see that nothing is left of them.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "process/uv_child_process.hpp"
#include "runtime/uv_loop.hpp"
#include "support/temporary_folder.hpp"

namespace vantora::test {

/// What this process holds now.
struct ProcessCensus {
  int descriptors = 0;
  int threads = 0;
  bool hasChildren = false;  ///< Of any state, zombies included.

  bool operator==(const ProcessCensus&) const = default;
  [[nodiscard]] static ProcessCensus take();
};
// NOLINTNEXTLINE(readability-identifier-naming): the name that GoogleTest looks for
void PrintTo(const ProcessCensus& census, std::ostream* stream);

/// Whether the process exists and is no zombie.
[[nodiscard]] bool isRunning(int process);

/// Whether the process ignores the request to end.
[[nodiscard]] bool isIgnoringTermination(int process);

/// Whether the process has no standard input any more.
[[nodiscard]] bool hasClosedItsInput(int process);

/// The helper's options: `scenario` with `arguments`.
[[nodiscard]] ChildProcessOptions helperOptions(const std::string& scenario,
                                                std::vector<std::string> arguments = {});

/// A folder of the test's own for executable scripts.
class HelperFolder {
 public:
  [[nodiscard]] const std::string& path() const { return path_; }

  /// An executable script that becomes the helper in `scenario`, whatever arguments it
  /// is given itself. Returns its path.
  [[nodiscard]] std::string makeHelperScript(const std::string& scenario,
                                             const std::vector<std::string>& arguments = {}) const;

 private:
  TemporaryFolder folder_;
  std::string path_ = folder_.path().string();
};

/// A loop, turned by hand, with a launcher on it. The launcher's times come from
/// `timers` when given (virtual time), else from the loop.
class RealProcesses {
 public:
  explicit RealProcesses(TaskQueue* timers = nullptr);

  [[nodiscard]] UvTaskQueue& queue() { return loop_.queue(); }
  [[nodiscard]] UvChildProcessLauncher& launcher() { return *launcher_; }

  /// Between two turns of the loop below.
  static constexpr Seconds turn{0.005};

  /// Turns the loop until `condition` holds. Fails the test after ten seconds.
  void runUntil(const std::function<bool()>& condition);
  /// Turns the loop until this process holds what `before` names, or fails the test. Where
  /// the launcher's timers are virtual, `passTime` lets them run at each turn: with them it
  /// looks after what lingers in a child's group, a sanitizer's last process for one.
  void runUntilBackTo(const ProcessCensus& before, const std::function<void()>& passTime = {});
  /// Runs what is ready, without waiting.
  void runReady();

  void destroyLauncher() { launcher_.reset(); }

 private:
  UvLoop loop_;
  std::unique_ptr<UvChildProcessLauncher> launcher_;
};

}  // namespace vantora::test
