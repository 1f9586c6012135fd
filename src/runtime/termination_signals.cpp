// SPDX-License-Identifier: MIT
#include "runtime/termination_signals.hpp"

#include <csignal>
#include <cstddef>

namespace vantora {

// libuv uses a handle's memory until it has closed it, which may be later than the end
// of the TerminationSignals.
struct TerminationSignals::Watch {
  uv_signal_t handle{};
  std::function<void()> onSignal;
};

TerminationSignals::TerminationSignals(uv_loop_t& loop, const std::function<void()>& onSignal) {
  constexpr std::array signals{SIGINT, SIGTERM, SIGHUP};
  for (std::size_t index = 0; index < signals.size(); ++index) {
    auto* watch = new Watch{{}, onSignal};
    watches_[index] = watch;
    watch->handle.data = watch;
    // Neither call fails for these signals and an open loop.
    uv_signal_init(&loop, &watch->handle);
    uv_signal_start(
        &watch->handle,
        [](uv_signal_t* handle, int) {
          const auto call = static_cast<Watch*>(handle->data)->onSignal;
          call();
        },
        signals[index]);
    uv_unref(reinterpret_cast<uv_handle_t*>(&watch->handle));
  }
}

TerminationSignals::~TerminationSignals() {
  for (Watch* watch : watches_) {
    uv_close(reinterpret_cast<uv_handle_t*>(&watch->handle),
             [](uv_handle_t* handle) { delete static_cast<Watch*>(handle->data); });
  }
}

void ignoreBrokenPipes() {
  std::signal(SIGPIPE, SIG_IGN);
}

}  // namespace vantora
