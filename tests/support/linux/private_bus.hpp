// SPDX-License-Identifier: MIT
//
// A private message bus: dbus-daemon in a directory of its own.
#pragma once

#include <sys/types.h>

#include <string>

namespace vantora::test {

/// Fails the test when the daemon does not start. The address stays the same over
/// stop() and start().
class PrivateBus {
 public:
  /// Makes the directory and starts the daemon.
  PrivateBus();
  ~PrivateBus();
  PrivateBus(const PrivateBus&) = delete;
  PrivateBus& operator=(const PrivateBus&) = delete;

  /// Returns once the daemon listens.
  void start();
  /// Kills the daemon, as a crash would.
  void stop();

  [[nodiscard]] std::string address() const { return "unix:path=" + directory_ + "/bus"; }
  /// For files of the test; removed with the bus.
  [[nodiscard]] const std::string& directory() const { return directory_; }

 private:
  std::string directory_;
  pid_t daemon_ = -1;
};

}  // namespace vantora::test
