// SPDX-License-Identifier: MIT
#include "app/print/reader_watch.hpp"

#include <sys/epoll.h>

#include <utility>

namespace vantora {

ReaderWatch::ReaderWatch(uv_loop_t& loop, int descriptor, std::function<void()> onGone)
    : instance_(epoll_create1(EPOLL_CLOEXEC)) {
  // EPOLLERR and EPOLLHUP are reported without being asked for (epoll_ctl(2)); a file is EPERM.
  epoll_event nothingElse{};
  if (!instance_ || epoll_ctl(instance_.get(), EPOLL_CTL_ADD, descriptor, &nothingElse) != 0) {
    return;
  }
  const auto gone = [this, onGone = std::move(onGone)] {
    watch_.stop();
    onGone();
  };
  if (watch_.start(loop, instance_.get(), gone) == 0) {
    watch_.letLoopEnd();
  }
}

}  // namespace vantora
