// SPDX-License-Identifier: MIT
#include "platform/linux/power/logind_sleep.hpp"

#include <fcntl.h>

#include <cstring>
#include <utility>

namespace vantora {
namespace {

constexpr const char* service = "org.freedesktop.login1";
constexpr const char* object = "/org/freedesktop/login1";
constexpr const char* manager = "org.freedesktop.login1.Manager";

struct MessageUnref {
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};

}  // namespace

LogindSleep::LogindSleep(std::function<void(SleepHold)> onWillSleep,
                         std::function<void()> onDidWake)
    : onWillSleep_(std::move(onWillSleep)), onDidWake_(std::move(onDidWake)) {}

void LogindSleep::busConnected(sd_bus& bus) {
  bus_ = &bus;
  // The calls only queue messages; one that cannot be queued breaks the connection, which is
  // reported by busLost().
  (void)sd_bus_match_signal_async(&bus, out(signal_), service, object, manager, "PrepareForSleep",
                                  prepareForSleep, nullptr, this);
  (void)sd_bus_add_match_async(&bus, out(owner_),
                               "type='signal',sender='org.freedesktop.DBus',"
                               "interface='org.freedesktop.DBus',member='NameOwnerChanged',"
                               "arg0='org.freedesktop.login1'",
                               ownerChanged, nullptr, this);
  inhibit();
}

void LogindSleep::busLost() {
  signal_.reset();
  owner_.reset();
  forgetService();
  bus_ = nullptr;
}

int LogindSleep::prepareForSleep(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  int begins = 0;
  if (sd_bus_message_read(message, "b", &begins) > 0) {
    auto* sleep = static_cast<LogindSleep*>(self);
    if (begins != 0) {
      sleep->fallAsleep();
    } else {
      sleep->wake();
      sleep->inhibit();
    }
  }
  return 0;
}

int LogindSleep::ownerChanged(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  const char* name = nullptr;
  const char* before = nullptr;
  const char* after = nullptr;
  if (sd_bus_message_read(message, "sss", &name, &before, &after) > 0) {
    auto* sleep = static_cast<LogindSleep*>(self);
    sleep->forgetService();
    if (*after != '\0') {
      sleep->inhibit();
    }
  }
  return 0;
}

int LogindSleep::inhibited(sd_bus_message* message, void* self, sd_bus_error* /*error*/) {
  auto* sleep = static_cast<LogindSleep*>(self);
  int lock = -1;
  // An answer that is an error (no such service, not permitted) means to do without a lock.
  if (!sleep->isAsleep_ && sd_bus_message_is_method_error(message, nullptr) == 0 &&
      sd_bus_message_read(message, "h", &lock) > 0) {
    // The message owns the descriptor that came with it.
    sleep->lock_ = UniqueFd(::fcntl(lock, F_DUPFD_CLOEXEC, 0));
  }
  return 0;
}

void LogindSleep::inhibit() {
  sd_bus_message* made = nullptr;
  if (lock_ ||
      sd_bus_message_new_method_call(bus_, &made, service, object, manager, "Inhibit") < 0) {
    return;
  }
  const std::unique_ptr<sd_bus_message, MessageUnref> message(made);
  // A machine that runs no logind is not made to start one.
  if (sd_bus_message_set_auto_start(made, 0) >= 0 &&
      sd_bus_message_append(made, "ssss", "sleep", "Vantora",
                            "Encerrar as leituras antes da suspensão", "delay") >= 0) {
    (void)sd_bus_call_async(bus_, out(call_), made, inhibited, this, 0);
  }
}

void LogindSleep::fallAsleep() {
  if (!std::exchange(isAsleep_, true)) {
    call_.reset();
    onWillSleep_(lock_ ? std::make_shared<UniqueFd>(std::move(lock_)) : nullptr);
  }
}

void LogindSleep::wake() {
  if (std::exchange(isAsleep_, false)) {
    onDidWake_();
  }
}

// The wake will not be announced any more, and the lock of a logind that ended holds nothing.
void LogindSleep::forgetService() {
  call_.reset();
  lock_.reset();
  wake();
}

}  // namespace vantora
