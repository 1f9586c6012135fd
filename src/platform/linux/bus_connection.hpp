// SPDX-License-Identifier: MIT
//
// One connection to a message bus, driven by a libuv loop and made again whenever it is
// lost. Everything that speaks on the bus is a listener of it: it sets up its objects,
// matches and calls each time the connection stands, and forgets them when it is lost.
//
// Costs nothing while nothing arrives: one watched descriptor, no timer unless a call
// waits for its answer. A message that arrives costs the wake-up and sd-bus's reads.
#pragma once

#include <systemd/sd-bus.h>
#include <uv.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/path_watch.hpp"
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
    /// The bus took us in: messages may be sent. `bus` is valid until busLost().
    virtual void busConnected(sd_bus& bus) = 0;
    /// The connection is gone, or an attempt to make it failed. Slots on it must be let
    /// go of now. Another attempt follows by itself.
    virtual void busLost() = 0;
  };

  /// Where the bus's socket can be watched for, an attempt is made when it appears, and
  /// without that in the end this seldom: for a socket that is there and takes nobody.
  static constexpr Seconds watchedRetryDelay{600};
  /// From a socket's appearance to the attempt: it is there before anybody listens.
  static constexpr Seconds appearanceDelay{0.1};

  /// `address` as D-Bus writes addresses; empty for a bus that does not exist, which is
  /// then asked for no more. `queue` runs on the loop's thread.
  BusConnection(uv_loop_t& loop, TaskQueue& queue, std::string address);
  ~BusConnection();
  BusConnection(const BusConnection&) = delete;
  BusConnection& operator=(const BusConnection&) = delete;

  /// A listener that comes late hears at once how things stand: that the connection
  /// stands, or that the last attempt failed. It must be taken out before it is
  /// destroyed, and not from inside of its own callbacks.
  void add(Listener& listener);
  void remove(Listener& listener);

  /// Makes the first attempt.
  void open();

  /// The bus while it is connected, else null.
  [[nodiscard]] sd_bus* bus() const { return isReady_ ? bus_.get() : nullptr; }

 private:
  struct Pump;
  struct BusCloser {
    void operator()(sd_bus* bus) const;
  };

  void connect();
  void prepare();
  void process();
  void lose();
  void socketAppeared();
  void close();

  uv_loop_t& loop_;
  TaskQueue& queue_;
  std::string address_;
  std::vector<Listener*> listeners_;
  std::unique_ptr<sd_bus, BusCloser> bus_;
  Pump* pump_ = nullptr;  // freed by libuv's close callbacks
  bool isReady_ = false;
  int failedAttempts_ = 0;
  TimerHandle retry_;
  PathWatch socketWatch_;           // only while there is no connection
  bool hasSocketAppeared_ = false;  // since the attempt began
};

}  // namespace vantora
