// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <set>
#include <string>
#include <vector>

namespace vantora {

/// Starts programs of the user's that are none of ours to end: each in a session of its own,
/// with no stream of this program's.
class DetachedPrograms {
 public:
  /// The main loop, which outlives it and does not wait for the programs.
  explicit DetachedPrograms(uv_loop_t& loop) : loop_(loop) {}
  /// Lets go of programs that still run; they go on.
  ~DetachedPrograms();
  DetachedPrograms(const DetachedPrograms&) = delete;
  DetachedPrograms& operator=(const DetachedPrograms&) = delete;

  /// `command` is the program, looked up in $PATH where it is no path, and its arguments.
  /// False when it cannot be started.
  bool start(std::vector<std::string> command);

 private:
  uv_loop_t& loop_;
  std::set<uv_process_t*> running_;  // libuv's until it has closed them
};

}  // namespace vantora
