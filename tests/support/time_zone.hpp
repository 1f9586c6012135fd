// SPDX-License-Identifier: MIT
//
// Pins the process's local time zone for the length of a test.
#pragma once

#include <cstdlib>
#include <ctime>
#include <optional>
#include <string>

namespace vantora::test {

class PinnedTimeZone {
 public:
  /// `zone` in the form of POSIX's TZ, such as "<-03>3" for three hours west.
  explicit PinnedTimeZone(const char* zone) {
    if (const char* before = std::getenv("TZ"); before != nullptr) {
      before_ = before;
    }
    setenv("TZ", zone, 1);
    tzset();
  }
  ~PinnedTimeZone() {
    if (before_) {
      setenv("TZ", before_->c_str(), 1);
    } else {
      unsetenv("TZ");
    }
    tzset();
  }
  PinnedTimeZone(const PinnedTimeZone&) = delete;
  PinnedTimeZone& operator=(const PinnedTimeZone&) = delete;

 private:
  std::optional<std::string> before_;
};

}  // namespace vantora::test
