// SPDX-License-Identifier: MIT
#include "platform/linux/power/scripted_logind.hpp"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <unistd.h>

#include <array>

namespace vantora::test {
namespace {

constexpr const char* name = "org.freedesktop.login1";
constexpr const char* path = "/org/freedesktop/login1";
constexpr const char* manager = "org.freedesktop.login1.Manager";

}  // namespace

ScriptedLogind::ScriptedLogind(uv_loop_t& loop, TaskQueue& queue, const std::string& address)
    : connection_(loop, queue, address) {
  connection_.add(*this);
  connection_.open();
}

ScriptedLogind::~ScriptedLogind() {
  connection_.remove(*this);
}

void ScriptedLogind::busConnected(sd_bus& bus) {
  static const std::array<sd_bus_vtable, 3> table{
      sd_bus_vtable SD_BUS_VTABLE_START(0),
      sd_bus_vtable SD_BUS_METHOD("Inhibit", "ssss", "h", inhibit, SD_BUS_VTABLE_UNPRIVILEGED),
      sd_bus_vtable SD_BUS_VTABLE_END};
  ASSERT_GE(sd_bus_add_object_vtable(&bus, out(object_), path, manager, table.data(), this), 0);
  comeBack();
}

void ScriptedLogind::comeBack() {
  ASSERT_GE(sd_bus_request_name(connection_.bus(), name, 0), 0);
  isReady_ = true;
}

void ScriptedLogind::leave() {
  ASSERT_GE(sd_bus_release_name(connection_.bus(), name), 0);
}

void ScriptedLogind::prepareForSleep(bool begins) {
  ASSERT_GE(
      sd_bus_emit_signal(connection_.bus(), path, manager, "PrepareForSleep", "b", begins ? 1 : 0),
      0);
}

bool ScriptedLogind::isHeld() const {
  // The pipe hangs up when the last copy of its other end is closed.
  pollfd ours{ourEnd_.get(), 0, 0};
  return ourEnd_ && ::poll(&ours, 1, 0) == 0;
}

int ScriptedLogind::inhibit(sd_bus_message* message, void* self, sd_bus_error* error) {
  auto* logind = static_cast<ScriptedLogind*>(self);
  std::string asked;
  for (int index = 0; index < 4; ++index) {
    const char* text = nullptr;
    if (sd_bus_message_read(message, "s", &text) < 0) {
      return -EINVAL;
    }
    asked.append(index == 0 ? "" : "|").append(text);
  }
  logind->locks.push_back(asked);
  if (logind->refuses) {
    return sd_bus_error_set(error, SD_BUS_ERROR_ACCESS_DENIED, "Permission denied");
  }
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return -errno;
  }
  logind->ourEnd_ = UniqueFd(ends[0]);
  const UniqueFd theirs(ends[1]);
  return sd_bus_reply_method_return(message, "h", theirs.get());
}

}  // namespace vantora::test
