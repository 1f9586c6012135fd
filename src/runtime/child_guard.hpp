// SPDX-License-Identifier: MIT
//
// The end of a child whose parent was killed.
//
// A program that is killed, or crashes, ends nobody. Its children see their input end,
// which the polite ones take for their own end; a guard sees to the others, whatever they
// ignore and whatever they started in their group. It is a process of its own, because
// nothing else is left by then: it shares this program's memory, holds one socket to it,
// and sleeps until that tells it something. (PR_SET_PDEATHSIG of prctl(2) reaches neither
// a child's children nor exists elsewhere.)
#pragma once

#include <sys/types.h>

#include "runtime/descriptor.hpp"

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

  /// From now on, should this program end without having dismissed it, the guard asks the
  /// process group to end and kills what is left of it after a quarter of a second.
  void watch(pid_t group);

  /// Nothing is left to end: the guard goes. Does nothing without a guard.
  void dismiss();

 private:
  Descriptor socket_;
};

}  // namespace vantora
