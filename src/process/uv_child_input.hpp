// SPDX-License-Identifier: MIT
//
// Our end of a child's standard input: a socket that is written without blocking.
#pragma once

#include <uv.h>

#include <functional>
#include <string>
#include <string_view>

namespace vantora {

/// On its loop's thread only. libuv uses the memory until `onClosed` was called, which
/// happens from the loop, once, after close() or after the last byte was flushed.
class UvChildInput {
 public:
  UvChildInput() = default;
  UvChildInput(const UvChildInput&) = delete;
  UvChildInput& operator=(const UvChildInput&) = delete;

  /// Takes the non-blocking, connected `socket`. `onLost`: bytes that were accepted can
  /// no longer be delivered. False when libuv cannot watch it; it is closed then and
  /// onClosed is not called.
  [[nodiscard]] bool open(uv_loop_t& loop, int socket, std::function<void()> onLost,
                          std::function<void()> onClosed);

  /// As ChildProcess::write().
  [[nodiscard]] bool write(std::string_view bytes);

  /// Closes once everything is delivered.
  void closeAfterFlush();

  /// Closes now and forgets what was not delivered.
  void close();

 private:
  void flush();
  /// Sends what the system takes of `bytes` and drops it from them. False on an error.
  bool send(std::string_view& bytes) const;

  uv_poll_t poll_{};
  int socket_ = -1;
  bool isEnding_ = false;
  std::string pending_;
  std::function<void()> onLost_;
  std::function<void()> onClosed_;
};

}  // namespace vantora
