// SPDX-License-Identifier: MIT
//
// An X11 display of the test's own, without a screen: Xvfb.
#pragma once

#include <sys/types.h>

#include <string>

namespace vantora::test {

class PrivateDisplay {
 public:
  /// Returns once the server listens; without a name where Xvfb is not installed. `depth`
  /// in bits of a pixel of the screen.
  explicit PrivateDisplay(int depth = 24);
  ~PrivateDisplay();
  PrivateDisplay(const PrivateDisplay&) = delete;
  PrivateDisplay& operator=(const PrivateDisplay&) = delete;

  /// Ends the server under its clients.
  void stop();

  /// Leaves the server and its sockets as they are, answering nothing, until resume().
  void pause();
  void resume();

  /// As in DISPLAY; empty when there is none.
  [[nodiscard]] const std::string& name() const { return name_; }

 private:
  std::string name_;
  pid_t server_ = -1;
};

}  // namespace vantora::test
