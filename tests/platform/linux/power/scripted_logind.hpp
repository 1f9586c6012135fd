// SPDX-License-Identifier: MIT
//
// A logind that does what the test says, on a bus of the test's own.
#pragma once

#include <string>
#include <vector>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/bus/bus_slot.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora::test {

/// On the same loop as what is tested.
class ScriptedLogind final : public BusConnection::Listener {
 public:
  ScriptedLogind(uv_loop_t& loop, TaskQueue& queue, const std::string& address);
  ~ScriptedLogind() override;
  ScriptedLogind(const ScriptedLogind&) = delete;
  ScriptedLogind& operator=(const ScriptedLogind&) = delete;

  void busConnected(sd_bus& bus) override;
  void busLost() override {}

  /// Whether the name is ours, so that calls reach us.
  [[nodiscard]] bool isReady() const { return isReady_; }
  void prepareForSleep(bool begins);
  /// Gives up the name, as a service that ends.
  void leave();
  void comeBack();

  /// Whether the lock that was handed out last is still held.
  [[nodiscard]] bool isHeld() const;

  bool refuses = false;
  std::vector<std::string> locks;  ///< What each call of Inhibit asked for, in one text.

 private:
  static int inhibit(sd_bus_message* message, void* self, sd_bus_error* error);

  BusConnection connection_;
  BusSlot object_;
  UniqueFd ourEnd_;
  bool isReady_ = false;
};

}  // namespace vantora::test
