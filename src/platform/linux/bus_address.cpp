// SPDX-License-Identifier: MIT
#include "platform/linux/bus_address.hpp"

#include <string_view>

namespace vantora {
namespace {

// freedesktop.org, D-Bus, "Server Addresses": bytes other than these are written as %XX.
bool isOptionallyEscaped(char byte) {
  constexpr std::string_view others = "-_/.\\*";
  return (byte >= '0' && byte <= '9') || (byte >= 'a' && byte <= 'z') ||
         (byte >= 'A' && byte <= 'Z') || others.find(byte) != std::string_view::npos;
}

std::string escaped(std::string_view value) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string out;
  for (const char byte : value) {
    if (isOptionallyEscaped(byte)) {
      out += byte;
    } else {
      const auto code = static_cast<unsigned char>(byte);
      out += '%';
      out += digits[code >> 4U];
      out += digits[code & 15U];
    }
  }
  return out;
}

}  // namespace

std::string sessionBusAddress(const char* sessionBusAddress, const char* runtimeDirectory) {
  if (sessionBusAddress != nullptr && *sessionBusAddress != '\0') {
    return sessionBusAddress;
  }
  if (runtimeDirectory != nullptr && *runtimeDirectory == '/') {
    return "unix:path=" + escaped(runtimeDirectory) + "/bus";
  }
  return {};
}

}  // namespace vantora
