// SPDX-License-Identifier: MIT
//
// One connection to a message bus, driven by a libuv loop and reconnected whenever it is
// lost. Everything that speaks on the bus is a listener of it: it sets up its objects,
// matches and calls each time the connection is established, and drops them when it is lost.
//
// Costs nothing while nothing arrives: one watched descriptor, no timer unless a call
// waits for its answer. A message that arrives costs the wake-up and sd-bus's reads.
//
// What waits to be written is bounded. A daemon that holds many replies for a peer that
// does not read them takes ours slowly (dbus-daemon: 20,000 calls of a picture grew the
// writer by 370 MB): calls are left in the socket meanwhile. A daemon that takes nothing
// at all loses the connection.
#pragma once

#include <systemd/sd-bus.h>
#include <uv.h>

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "runtime/task_queue.hpp"

namespace vantora {

/// How long to wait before the next attempt: 1, 2, 4, 8, 16 and then 30 s.
[[nodiscard]] Seconds busRetryDelay(int failedAttempts);

/// Lives on the loop's thread.
class BusConnection {
 public:
  class Listener {
   public:
    virtual ~Listener() = default;
    /// The connection is established: messages may be sent. `bus` is valid until busLost().
    virtual void busConnected(sd_bus& bus) = 0;
    /// The connection is gone, or an attempt to make it failed. Slots on it must be
    /// released now. The next attempt is scheduled already.
    virtual void busLost() = 0;
  };

  /// With more messages than this to write, no call is read until some were written.
  static constexpr std::uint64_t maxUnsentWhileReading = 16;
  /// With more than this, which is minutes of our signals, the connection is given up.
  static constexpr std::uint64_t maxUnsent = 1024;

  /// `address` as D-Bus writes addresses; empty for the session's bus, which sd_bus_open_user(3)
  /// finds by DBUS_SESSION_BUS_ADDRESS, else in XDG_RUNTIME_DIR. Where neither is set there is
  /// no bus, and no second attempt. `queue` runs on the loop's thread.
  BusConnection(uv_loop_t& loop, TaskQueue& queue, std::string address);
  ~BusConnection();
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;

  /// Another one to the same bus, on the same loop, not opened yet.
  [[nodiscard]] std::unique_ptr<BusConnection> another() const {
    return std::make_unique<BusConnection>(loop_, queue_, address_);
  }

  /// A listener added later is called at once: busConnected() on an established
  /// connection, busLost() after a failed attempt. It must be removed before it is
  /// destroyed, and not from inside of its own callbacks.
  void add(Listener& listener);
  void remove(Listener& listener);

  /// Makes the first attempt.
  void open();

  /// The bus while it is connected, else null.
  [[nodiscard]] sd_bus* bus() const { return isReady_ ? bus_.get() : nullptr; }

  /// Where the bus listens, as D-Bus writes addresses. Empty for the session's bus while there
  /// is no connection to it.
  [[nodiscard]] std::string address() const;

 private:
  struct Pump;
  struct BusCloser {
    void operator()(sd_bus* bus) const;
  };

  [[nodiscard]] int start(sd_bus** made) const;
  void connect();
  void prepare();
  void process();
  void lose();
  void close();

  uv_loop_t& loop_;
  TaskQueue& queue_;
  std::string address_;
  std::vector<Listener*> listeners_;
  std::unique_ptr<sd_bus, BusCloser> bus_;
  Pump* pump_ = nullptr;  // freed by libuv's close callbacks
  bool isReady_ = false;
  int failedAttempts_ = 0;
  bool hasNoAddress_ = false;
  TimerHandle retry_;
};

}  // namespace vantora
