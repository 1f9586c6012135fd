// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include <memory>
#include <string>

#include "platform/linux/bus/bus_slot.hpp"
#include "support/linux/loop_driver.hpp"

namespace vantora::test {

struct MessageRelease {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using BusMessage = std::unique_ptr<sd_bus_message, MessageRelease>;

/// Where a call goes.
struct BusTarget {
  std::string name;
  std::string path;
  std::string interface;
};

/// Calls over `bus` while the loop runs, and gives the answer, which may be an error.
/// Null, and a failed test, when none comes.
template <typename... Arguments>
BusMessage callAndWait(UvLoop& loop, sd_bus* bus, const BusTarget& target, const char* member,
                       const char* types, Arguments... arguments) {
  BusMessage answer;
  BusSlot slot;
  sd_bus_call_method_async(
      bus, out(slot), target.name.c_str(), target.path.c_str(), target.interface.c_str(), member,
      [](sd_bus_message* reply, void* self, sd_bus_error*) {
        static_cast<BusMessage*>(self)->reset(sd_bus_message_ref(reply));
        return 0;
      },
      &answer, types, arguments...);
  EXPECT_TRUE(runUntil(loop, [&] { return answer != nullptr; })) << member;
  return answer;
}

inline bool isError(const BusMessage& answer) {
  return sd_bus_message_is_method_error(answer.get(), nullptr) > 0;
}

}  // namespace vantora::test
