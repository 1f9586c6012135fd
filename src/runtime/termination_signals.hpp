// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <array>
#include <functional>

namespace vantora {

/// Turns the signals that ask the program to end (SIGINT, SIGTERM, SIGHUP) into calls on
/// a loop. On the loop's thread, for as long as the loop exists.
class TerminationSignals {
 public:
  /// `onSignal` is called on the loop's thread, at each of the signals.
  TerminationSignals(uv_loop_t& loop, const std::function<void()>& onSignal);
  ~TerminationSignals();
  TerminationSignals(const TerminationSignals&) = delete;
  TerminationSignals& operator=(const TerminationSignals&) = delete;

 private:
  struct Watch;
  std::array<Watch*, 3> watches_{};
};

/// Makes a write to a pipe without a reader an error (EPIPE) instead of a signal.
void ignoreBrokenPipes();

}  // namespace vantora
