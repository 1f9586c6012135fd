// SPDX-License-Identifier: MIT
//
// What the groups of Linux sensors share: one look at the chips for all of them, and the
// rules for trying again.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "model/time.hpp"
#include "platform/linux/sensors/hwmon.hpp"

namespace vantora {

/// How long a group that found nothing, or failed three passes in a row, is left alone.
inline constexpr Seconds sensorBackOff{60};

/// The hwmon chips, looked up when the first group of a pass asks for them.
class ChipLookup {
 public:
  explicit ChipLookup(const std::string& root) : root_(root) {}

  [[nodiscard]] const std::vector<Hwmon::Chip>& chips() {
    if (!chips_) {
      chips_ = Hwmon::chips(root_);
    }
    return *chips_;
  }
  /// The chips are not what they were when they were looked up.
  void forget() { chips_.reset(); }

 private:
  const std::string& root_;
  std::optional<std::vector<Hwmon::Chip>> chips_;
};

/// One pass over the sensors.
struct SensorPass {
  Seconds uptime{0};
  WallTime now;
  ChipLookup chips;
};

/// Whether a group of sensors is open, and when it may be opened next.
class SensorUpkeep {
 public:
  /// Why nothing can be read, while the group is closed.
  [[nodiscard]] const std::string& reason() const { return reason_; }
  [[nodiscard]] bool isOpen() const { return isOpen_; }
  [[nodiscard]] bool mayOpen(Seconds uptime) const { return !isOpen_ && uptime >= retryAfter_; }

  void opened() { isOpen_ = true; }
  /// Nothing of the kind is there: it is looked for again in 60 s.
  void absent(Seconds uptime, std::string reason) { rest(uptime, std::move(reason)); }
  void succeeded() { failures_ = 0; }
  /// True with the third failed pass in a row: the group is then closed, for 60 s.
  [[nodiscard]] bool failed(Seconds uptime, std::string reason) {
    if (++failures_ < failuresUntilBackOff) {
      return false;
    }
    rest(uptime, std::move(reason));
    return true;
  }
  /// To be opened anew at once. Failed passes stay counted.
  void lookAgain() {
    isOpen_ = false;
    retryAfter_ = Seconds{0};
  }

 private:
  static constexpr int failuresUntilBackOff = 3;

  void rest(Seconds uptime, std::string reason) {
    isOpen_ = false;
    failures_ = 0;
    retryAfter_ = uptime + sensorBackOff;
    reason_ = std::move(reason);
  }

  bool isOpen_ = false;
  Seconds retryAfter_{0};
  int failures_ = 0;
  std::string reason_;
};

}  // namespace vantora
