// SPDX-License-Identifier: MIT
//
// A bus that takes a client in, calls it as often as the socket holds, and reads nothing
// of what it answers: a daemon that is stopped, or busy with peers that do not read.
#pragma once

#include <systemd/sd-bus.h>

#include <array>
#include <memory>
#include <string>
#include <vector>

#include "runtime/unique_fd.hpp"
#include "support/temporary_folder.hpp"

namespace vantora::test {

class DeafBus {
 public:
  /// The object, interface and member that it calls, without arguments.
  static constexpr const char* path = "/p";
  static constexpr const char* interface = "t.t";
  static constexpr const char* member = "Call";

  DeafBus();
  ~DeafBus();
  DeafBus(const DeafBus&) = delete;
  DeafBus& operator=(const DeafBus&) = delete;

  [[nodiscard]] std::string address() const { return "unix:path=" + socketPath(); }

  /// Goes on with taking the client in, without waiting. It reads no more once that is done.
  void takeIn();
  [[nodiscard]] bool isTaken() const { return isTaken_; }

  /// Sends as many calls as the socket holds now, and returns how many it has sent in all.
  std::size_t call();

 private:
  [[nodiscard]] std::string socketPath() const { return (folder_ / "bus").string(); }
  static int onHello(sd_bus_message* message, void* self, sd_bus_error* error);

  TemporaryFolder folder_;
  UniqueFd listener_;
  int client_ = -1;  // sd-bus closes it
  sd_bus* bus_ = nullptr;
  bool isTaken_ = false;
  std::size_t sentBytes_ = 0;
};

}  // namespace vantora::test
