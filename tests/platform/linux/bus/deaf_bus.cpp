// SPDX-License-Identifier: MIT
#include "platform/linux/bus/deaf_bus.hpp"

#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/un.h>

#include <cstdint>
#include <cstring>
#include <string_view>

namespace vantora::test {
namespace {

constexpr const char* clientName = ":1.1";

// A method call as it goes over the wire (freedesktop.org, D-Bus, "Message Protocol").
std::string encodedCall() {
  std::string fields;
  const auto field = [&fields](char code, char type, std::string_view value) {
    fields.resize((fields.size() + 7) / 8 * 8);
    fields += {code, '\1', type, '\0'};
    const auto length = static_cast<std::uint32_t>(value.size());
    fields.append(reinterpret_cast<const char*>(&length), sizeof length);
    fields += value;
    fields += '\0';
  };
  field(1, 'o', DeafBus::path);
  field(2, 's', DeafBus::interface);
  field(3, 's', DeafBus::member);
  field(6, 's', clientName);
  const std::uint16_t one = 1;
  const bool isLittle = *reinterpret_cast<const char*>(&one) == 1;
  std::string call{isLittle ? 'l' : 'B', '\1', '\0', '\1'};
  const std::array<std::uint32_t, 3> numbers{0, 7, static_cast<std::uint32_t>(fields.size())};
  call.append(reinterpret_cast<const char*>(numbers.data()), sizeof numbers);
  call += fields;
  call.resize((call.size() + 7) / 8 * 8);
  return call;
}

}  // namespace

DeafBus::DeafBus() : listener_(::socket(AF_UNIX, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, 0)) {
  sockaddr_un place{};
  place.sun_family = AF_UNIX;
  std::strncpy(place.sun_path, socketPath().c_str(), sizeof place.sun_path - 1);
  EXPECT_EQ(::bind(listener_.get(), reinterpret_cast<sockaddr*>(&place), sizeof place), 0);
  EXPECT_EQ(::listen(listener_.get(), 1), 0);
}

DeafBus::~DeafBus() {
  sd_bus_close_unref(bus_);
}

void DeafBus::takeIn() {
  if (bus_ == nullptr) {
    client_ = ::accept4(listener_.get(), nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
    if (client_ < 0) {
      return;
    }
    sd_bus_new(&bus_);
    sd_bus_set_fd(bus_, client_, client_);
    sd_id128_t id{};
    id.bytes[0] = 1;
    sd_bus_set_server(bus_, 1, id);
    sd_bus_add_filter(bus_, nullptr, onHello, this);
    EXPECT_GE(sd_bus_start(bus_), 0);
  }
  while (!isTaken_ && sd_bus_process(bus_, nullptr) > 0) {
  }
}

int DeafBus::onHello(sd_bus_message* message, void* self, sd_bus_error*) {
  if (sd_bus_message_is_method_call(message, "org.freedesktop.DBus", "Hello") <= 0) {
    return 0;
  }
  static_cast<DeafBus*>(self)->isTaken_ = true;
  return sd_bus_reply_method_return(message, "s", clientName);
}

std::size_t DeafBus::call() {
  static const std::string message = encodedCall();
  for (;;) {
    const std::string_view rest = std::string_view(message).substr(sentBytes_ % message.size());
    const ssize_t sent = ::send(client_, rest.data(), rest.size(), MSG_DONTWAIT | MSG_NOSIGNAL);
    if (sent <= 0) {
      return sentBytes_ / message.size();
    }
    sentBytes_ += static_cast<std::size_t>(sent);
  }
}

}  // namespace vantora::test
