// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_notifier_watcher.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <utility>

#include "runtime/unique_fd.hpp"

namespace vantora {
namespace {

constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* watcherPath = "/StatusNotifierWatcher";
constexpr const char* busName = "org.freedesktop.DBus";
constexpr const char* busPath = "/org/freedesktop/DBus";
// A watcher that takes the name before it is ready refuses at first, or takes the item and
// then drops it.
constexpr int maxRegistrations = 6;

std::string processName(const std::string& process) {
  const std::string path = process + "/comm";
  const UniqueFd file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  std::array<char, 32> name{};  // The kernel keeps at most 15 bytes, and ends the line.
  const ssize_t length = file ? ::read(file.get(), name.data(), name.size()) : -1;
  const std::string_view text(name.data(), length > 0 ? static_cast<std::size_t>(length) : 0);
  return std::string(text.substr(0, text.find('\n')));
}

}  // namespace

template <StatusNotifierWatcher::Reply reply>
int StatusNotifierWatcher::handle(sd_bus_message* message, void* self, sd_bus_error*) {
  (static_cast<StatusNotifierWatcher*>(self)->*reply)(message);
  return 0;
}

StatusNotifierWatcher::StatusNotifierWatcher(BusConnection& connection, TaskQueue& queue,
                                             Processes processes,
                                             std::function<void(const State&)> onChange)
    : connection_(connection),
      queue_(queue),
      processes_(std::move(processes)),
      onChange_(std::move(onChange)),
      itemName_("org.kde.StatusNotifierItem-" + std::to_string(::getpid()) + "-1") {
  connection_.add(*this);
}

StatusNotifierWatcher::~StatusNotifierWatcher() {
  connection_.remove(*this);
}

void StatusNotifierWatcher::busConnected(sd_bus& bus) {
  bus_ = &bus;
  State state;
  state.hasBus = true;
  setState(state);
  subscribe();
  sd_bus_call_method_async(bus_, out(ownerCall_), busName, busPath, busName, "GetNameOwner",
                           handle<&StatusNotifierWatcher::onOwner>, this, "s", watcherName);
}

void StatusNotifierWatcher::busLost() {
  bus_ = nullptr;
  retry_.reset();
  reading_.reset();
  for (BusSlot* slot :
       {&nameRequest_, &ownerMatch_, &hostAppearedMatch_, &hostLeftMatch_, &droppedMatch_,
        &ownerCall_, &processCall_, &registerCall_, &hasHostCall_}) {
    slot->reset();
  }
  setState(State{});
}

void StatusNotifierWatcher::requestName() {
  // The bus takes up messages in their order, so the name is ours before a watcher hears
  // of it. The process number makes it unique, so the answer does not matter; without a
  // handler sd-bus would end the connection over a refusal.
  sd_bus_request_name_async(
      bus_, out(nameRequest_), itemName_.c_str(), 0,
      [](sd_bus_message*, void*, sd_bus_error*) { return 0; }, nullptr);
}

void StatusNotifierWatcher::subscribe() {
  const std::string ownerRule =
      std::string(
          "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
          "interface='org.freedesktop.DBus',member='NameOwnerChanged',arg0='") +
      watcherName + "'";
  sd_bus_add_match_async(bus_, out(ownerMatch_), ownerRule.c_str(),
                         handle<&StatusNotifierWatcher::onOwnerChanged>, nullptr, this);
  sd_bus_match_signal_async(bus_, out(hostAppearedMatch_), watcherName, watcherPath, watcherName,
                            "StatusNotifierHostRegistered",
                            handle<&StatusNotifierWatcher::onHostAppeared>, nullptr, this);
  sd_bus_match_signal_async(bus_, out(hostLeftMatch_), watcherName, watcherPath, watcherName,
                            "StatusNotifierHostUnregistered",
                            handle<&StatusNotifierWatcher::onHostLeft>, nullptr, this);
  sd_bus_match_signal_async(bus_, out(droppedMatch_), watcherName, watcherPath, watcherName,
                            "StatusNotifierItemUnregistered",
                            handle<&StatusNotifierWatcher::onDropped>, nullptr, this);
}

void StatusNotifierWatcher::onOwner(sd_bus_message* reply) {
  const char* owner = "";
  if (sd_bus_message_is_method_error(reply, nullptr) > 0 ||
      sd_bus_message_read(reply, "s", &owner) < 0) {
    owner = "";
  }
  follow(owner);
}

void StatusNotifierWatcher::onOwnerChanged(sd_bus_message* signal) {
  const char* name = "";
  const char* before = "";
  const char* now = "";
  if (sd_bus_message_read(signal, "sss", &name, &before, &now) >= 0) {
    ownerCall_.reset();
    follow(now);
  }
}

void StatusNotifierWatcher::follow(const char* owner) {
  processCall_.reset();
  registerCall_.reset();
  hasHostCall_.reset();
  retry_.reset();
  reading_.reset();
  failedRegistrations_ = 0;
  State state;
  state.hasBus = true;
  setState(state);
  if (*owner != '\0') {
    sd_bus_call_method_async(bus_, out(processCall_), busName, busPath, busName,
                             "GetConnectionUnixProcessID",
                             handle<&StatusNotifierWatcher::onProcess>, this, "s", owner);
  }
}

void StatusNotifierWatcher::onProcess(sd_bus_message* reply) {
  State state = state_;
  state.isPresent = true;
  unsigned number = 0;
  std::string process;
  if (sd_bus_message_is_method_error(reply, nullptr) <= 0 &&
      sd_bus_message_read(reply, "u", &number) >= 0) {
    process = processes_.root + "/" + std::to_string(number);
    state.program = processName(process);
    state.panel = &panelOf(state.program);
  }
  setState(state);
  readLayout(process);
  registerItem();
  askForHost();
}

// The item does not wait for it: a disk that hangs costs the form and not the item. Commonly it is
// known before the panel has asked for a picture.
void StatusNotifierWatcher::readLayout(const std::string& process) {
  const auto read = state_.panel->readsLayout;
  if (read == nullptr || processes_.worker == nullptr) {
    return;
  }
  reading_ = std::make_shared<bool>(true);
  const auto answer = std::make_shared<PanelLayout>();
  processes_.worker->run([answer, read, process] { *answer = read(process); },
                         [this, answer, reading = std::weak_ptr(reading_)] {
                           // Not when the panel, or this object, has gone meanwhile.
                           if (!reading.expired()) {
                             reading_.reset();
                             State state = state_;
                             state.layout = *answer;
                             setState(state);
                           }
                         });
}

void StatusNotifierWatcher::setRegistering(bool isRegistering) {
  if (isRegistering == isRegistering_) {
    return;
  }
  isRegistering_ = isRegistering;
  if (isRegistering) {
    if (state_.isPresent) {
      registerItem();
    }
    return;
  }
  retry_.reset();
  registerCall_.reset();
  nameRequest_.reset();
  if (bus_ != nullptr) {
    // Watchers take an item out when its name goes.
    sd_bus_release_name_async(
        bus_, nullptr, itemName_.c_str(), [](sd_bus_message*, void*, sd_bus_error*) { return 0; },
        nullptr);
  }
}

void StatusNotifierWatcher::registerItem() {
  if (!isRegistering_) {
    return;
  }
  requestName();
  sd_bus_call_method_async(
      bus_, out(registerCall_), watcherName, watcherPath, watcherName, "RegisterStatusNotifierItem",
      handle<&StatusNotifierWatcher::onRegistered>, this, "s", itemName_.c_str());
}

void StatusNotifierWatcher::onRegistered(sd_bus_message* reply) {
  if (sd_bus_message_is_method_error(reply, nullptr) > 0) {
    registerLater();
  }
}

// GNOME's extension takes an item while the shell starts, fails to read it, and drops it.
void StatusNotifierWatcher::onDropped(sd_bus_message* signal) {
  const char* text = "";
  if (!state_.isPresent || !isRegistering_ || sd_bus_message_read(signal, "s", &text) < 0) {
    return;
  }
  // Some watchers add the object's path.
  const std::string_view item = text;
  if (item.substr(0, item.find('/')) == itemName_) {
    registerLater();
  }
}

void StatusNotifierWatcher::registerLater() {
  ++failedRegistrations_;
  if (failedRegistrations_ < maxRegistrations) {
    const Seconds delay = busRetryDelay(failedRegistrations_);
    retry_ = queue_.runAfter(delay, delay / 4, [this] {
      registerItem();
      askForHost();
    });
  }
}

void StatusNotifierWatcher::askForHost() {
  sd_bus_call_method_async(bus_, out(hasHostCall_), watcherName, watcherPath,
                           "org.freedesktop.DBus.Properties", "Get",
                           handle<&StatusNotifierWatcher::onHasHost>, this, "ss", watcherName,
                           "IsStatusNotifierHostRegistered");
}

void StatusNotifierWatcher::onHasHost(sd_bus_message* reply) {
  int hasHost = 1;  // a watcher without the property is taken for a panel
  if (sd_bus_message_is_method_error(reply, nullptr) <= 0 &&
      sd_bus_message_read(reply, "v", "b", &hasHost) < 0) {
    hasHost = 1;
  }
  State state = state_;
  state.hasHost = hasHost != 0;
  setState(state);
}

void StatusNotifierWatcher::onHostAppeared(sd_bus_message*) {
  if (state_.isPresent) {
    State state = state_;
    state.hasHost = true;
    setState(state);
  }
}

void StatusNotifierWatcher::onHostLeft(sd_bus_message*) {
  // Another panel may still be there.
  if (state_.isPresent) {
    askForHost();
  }
}

void StatusNotifierWatcher::setState(const State& state) {
  if (hasReported_ && state == state_) {
    return;
  }
  hasReported_ = true;
  state_ = state;
  onChange_(state_);
}

}  // namespace vantora
