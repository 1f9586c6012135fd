// SPDX-License-Identifier: MIT
//
// The end of a child whose parent was killed.
//
// A killed or crashed program cannot terminate its children. They see the end of their
// input, at which a well-behaved child exits; a guard terminates the others, and whatever
// they started in their process group. The guard is a process, because nothing else outlives
// the program: it shares the program's memory, holds one socket to it, and sleeps until a
// message or the end of the stream arrives. (PR_SET_PDEATHSIG of prctl(2) reaches neither
// a child's children nor exists elsewhere.)
#pragma once

#include <sys/types.h>

#include "runtime/unique_fd.hpp"

namespace vantora {

/// Lives on the main thread; one for each child, for as long as its group may live.
class ChildGuard {
 public:
  ChildGuard() = default;
  ~ChildGuard() { dismiss(); }
  ChildGuard(const ChildGuard&) = delete;
  ChildGuard& operator=(const ChildGuard&) = delete;

  /// Starts the guard, before the child, so that the child is never without it. 0, or
  /// libuv's number of the error.
  [[nodiscard]] int start();

  /// From now on, if this program ends without having dismissed the guard, the guard sends
  /// SIGTERM to the process group and SIGKILL to what is left of it a quarter of a second
  /// later.
  void watch(pid_t group);

  /// Nothing is left to terminate: the guard exits. Does nothing without a guard.
  void dismiss();

 private:
  UniqueFd socket_;
};

}  // namespace vantora
