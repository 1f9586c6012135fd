// SPDX-License-Identifier: MIT
#include "platform/linux/bus/bus_connection.hpp"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <utility>

namespace vantora {

Seconds busRetryDelay(int failedAttempts) {
  constexpr int maxDelay = 30;
  constexpr int doublings = 5;
  const int attempts = std::clamp(failedAttempts, 1, doublings + 1);
  return Seconds{static_cast<double>(std::min(1 << (attempts - 1), maxDelay))};
}

// The handles of one connection. They outlive it until libuv has closed them.
struct BusConnection::Pump {
  BusConnection* owner = nullptr;
  uv_poll_t poll{};
  uv_prepare_t prepare{};
  uv_timer_t timer{};
  // A duplicate: sd-bus closes its own descriptor when the connection breaks, and libuv
  // must not be left with a number that may come to mean another file.
  int descriptor = -1;
  int watchedDescriptor = -1;
  int events = 0;
  std::uint64_t deadline = UINT64_MAX;
  int openHandles = 0;

  template <typename Handle>
  static void release(Handle& handle) {
    uv_close(reinterpret_cast<uv_handle_t*>(&handle), [](uv_handle_t* closed) {
      auto* pump = static_cast<Pump*>(closed->data);
      if (--pump->openHandles == 0) {
        ::close(pump->descriptor);
        delete pump;
      }
    });
  }

  static Pump* start(BusConnection& owner, uv_loop_t& loop, int busDescriptor) {
    const int own = ::fcntl(busDescriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0) {
      return nullptr;
    }
    auto* pump = new Pump;
    if (uv_poll_init(&loop, &pump->poll, own) != 0) {
      ::close(own);
      delete pump;
      return nullptr;
    }
    pump->owner = &owner;
    pump->descriptor = own;
    pump->watchedDescriptor = busDescriptor;
    uv_prepare_init(&loop, &pump->prepare);
    uv_timer_init(&loop, &pump->timer);
    pump->openHandles = 3;
    pump->poll.data = pump;
    pump->prepare.data = pump;
    pump->timer.data = pump;
    uv_prepare_start(&pump->prepare, [](uv_prepare_t* handle) {
      static_cast<Pump*>(handle->data)->owner->prepare();
    });
    return pump;
  }

  // Nothing calls the owner any more.
  void stop() {
    uv_poll_stop(&poll);
    release(poll);
    release(prepare);
    release(timer);
  }

  // Changes the kernel's watch only when what sd-bus waits for has changed.
  void watch(int busEvents) {
    const int wanted = ((busEvents & POLLIN) != 0 ? UV_READABLE : 0) |
                       ((busEvents & POLLOUT) != 0 ? UV_WRITABLE : 0);
    if (wanted == events) {
      return;
    }
    events = wanted;
    if (wanted == 0) {
      uv_poll_stop(&poll);
      return;
    }
    uv_poll_start(&poll, wanted, [](uv_poll_t* handle, int, int) {
      static_cast<Pump*>(handle->data)->owner->process();
    });
  }

  // `until` in microseconds of CLOCK_MONOTONIC, UINT64_MAX for never.
  void wakeAt(std::uint64_t until) {
    if (until == deadline) {
      return;
    }
    deadline = until;
    if (until == UINT64_MAX) {
      uv_timer_stop(&timer);
      return;
    }
    const std::uint64_t now = uv_hrtime() / 1000;
    const std::uint64_t delay = until > now ? (until - now + 999) / 1000 : 0;
    uv_timer_start(
        &timer,
        [](uv_timer_t* handle) {
          auto* pump = static_cast<Pump*>(handle->data);
          pump->deadline = UINT64_MAX;
          pump->owner->process();
        },
        delay, 0);
  }
};

void BusConnection::BusCloser::operator()(sd_bus* bus) const {
  sd_bus_close_unref(bus);
}

BusConnection::BusConnection(uv_loop_t& loop, TaskQueue& queue, std::string address)
    : loop_(loop), queue_(queue), address_(std::move(address)) {}

BusConnection::~BusConnection() {
  close();
}

void BusConnection::add(Listener& listener) {
  listeners_.push_back(&listener);
  if (sd_bus* connected = bus()) {
    listener.busConnected(*connected);
  } else if (failedAttempts_ > 0) {
    listener.busLost();
  }
}

void BusConnection::remove(Listener& listener) {
  std::erase(listeners_, &listener);
}

void BusConnection::open() {
  if (bus_ == nullptr) {
    connect();
  }
}

std::string BusConnection::address() const {
  const char* inUse = "";
  if (bus_ == nullptr || sd_bus_get_address(bus_.get(), &inUse) < 0) {
    return address_;
  }
  return inUse;
}

// A connection on its way, or a negative errno. Does not wait for the bus.
int BusConnection::start(sd_bus** made) const {
  if (address_.empty()) {
    return sd_bus_open_user(made);
  }
  int result = sd_bus_new(made);
  if (result >= 0) {
    result = sd_bus_set_address(*made, address_.c_str());
  }
  if (result >= 0) {
    result = sd_bus_set_bus_client(*made, 1);
  }
  return result < 0 ? result : sd_bus_start(*made);
}

void BusConnection::connect() {
  retry_.reset();
  sd_bus* made = nullptr;
  const int result = start(&made);
  bus_.reset(made);
  hasNoAddress_ = result == -ENOMEDIUM;
  if (result >= 0) {
    pump_ = Pump::start(*this, loop_, sd_bus_get_fd(made));
  }
  if (pump_ == nullptr) {
    lose();
  }
}

// Runs before the loop waits: whatever was sent or asked meanwhile is taken into account.
void BusConnection::prepare() {
  // With several addresses sd-bus goes on to the next one on a new descriptor.
  const int descriptor = sd_bus_get_fd(bus_.get());
  if (descriptor >= 0 && descriptor != pump_->watchedDescriptor) {
    pump_->stop();
    pump_ = Pump::start(*this, loop_, descriptor);
    if (pump_ == nullptr) {
      lose();
      return;
    }
  }
  int events = sd_bus_get_events(bus_.get());
  std::uint64_t until = UINT64_MAX;
  const int timeout = sd_bus_get_timeout(bus_.get(), &until);
  std::uint64_t unsent = 0;
  sd_bus_get_n_queued_write(bus_.get(), &unsent);
  if (descriptor < 0 || events < 0 || timeout < 0 || unsent > maxUnsent) {
    lose();
    return;
  }
  if (unsent > maxUnsentWhileReading) {
    events &= ~POLLIN;
  }
  pump_->watch(events);
  pump_->wakeAt(until);
}

void BusConnection::process() {
  // Once connected, one message for each time that the descriptor is readable: asking
  // sd-bus until it has nothing left costs a read that fails after every message, and
  // one message at a time is the rule here. Before that it may have read ahead.
  for (bool again = true; again;) {
    const int result = sd_bus_process(bus_.get(), nullptr);
    if (result < 0 || sd_bus_is_open(bus_.get()) <= 0) {
      lose();
      return;
    }
    std::uint64_t until = UINT64_MAX;
    const bool hasQueued = sd_bus_get_timeout(bus_.get(), &until) > 0 && until == 0;
    again = result > 0 && (!isReady_ || hasQueued);
  }
  if (!isReady_ && sd_bus_is_ready(bus_.get()) > 0) {
    isReady_ = true;
    failedAttempts_ = 0;
    for (Listener* listener : std::vector(listeners_)) {
      listener->busConnected(*bus_);
    }
  }
}

void BusConnection::lose() {
  isReady_ = false;
  for (Listener* listener : std::vector(listeners_)) {
    listener->busLost();
  }
  close();
  ++failedAttempts_;
  if (hasNoAddress_) {
    return;
  }
  const Seconds delay = busRetryDelay(failedAttempts_);
  retry_ = queue_.runAfter(delay, delay / 4, [this] { connect(); });
}

void BusConnection::close() {
  isReady_ = false;
  if (pump_ != nullptr) {
    pump_->stop();
    pump_ = nullptr;
  }
  bus_.reset();
}

}  // namespace vantora
