// SPDX-License-Identifier: MIT
#pragma once

#include "runtime/unique_fd.hpp"

namespace vantora {

/// The three standard streams of a child that is about to start: a socket for its input
/// (process/no_sigpipe_socket.hpp says why) and two pipes. Our ends do not block, the child's
/// do. All are close-on-exec, so that no other child of ours holds them open.
struct ChildStreams {
  UniqueFd ourInput, ourOutput, ourError;
  UniqueFd itsInput, itsOutput, itsError;

  /// 0, or libuv's number of the error.
  [[nodiscard]] int open();
};

}  // namespace vantora
