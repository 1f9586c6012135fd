// SPDX-License-Identifier: MIT
#pragma once

#include <uv.h>

#include <functional>
#include <memory>
#include <string>

#include "platform/linux/unique_fd.hpp"

namespace vantora {

/// Tells when something new appears at a path, or on the way to it where that does not exist
/// yet: inotify(7) on the deepest folder that is there. Costs a descriptor, and a wake-up for
/// each thing that is made in that folder. Lives on the loop's thread.
class PathWatch {
 public:
  /// `onAppeared` comes from the loop; the way may have grown without having reached its end.
  PathWatch(uv_loop_t& loop, std::function<void()> onAppeared);
  ~PathWatch();
  PathWatch(const PathWatch&) = delete;
  PathWatch& operator=(const PathWatch&) = delete;

  /// Watches for `path`, an absolute one, from now on; a second call looks for the deepest
  /// folder anew and misses nothing that is made meanwhile. False where the system does not
  /// watch for us.
  [[nodiscard]] bool start(const std::string& path);

  /// Nothing is told any more, and nothing is left open.
  void stop();

 private:
  void dispatch();

  uv_loop_t& loop_;
  std::function<void()> onAppeared_;
  UniqueFd events_;
  uv_poll_t* poll_ = nullptr;  // freed by libuv's close callback
  int watch_ = -1;
  std::string awaited_;  // the name in the watched folder
};

}  // namespace vantora
