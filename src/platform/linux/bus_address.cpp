// SPDX-License-Identifier: MIT
#include "platform/linux/bus_address.hpp"

#include <algorithm>
#include <charconv>
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

// %XX, where X is a digit of either case.
std::string unescaped(std::string_view value) {
  std::string out;
  while (!value.empty()) {
    unsigned char code = 0;
    if (value.size() >= 3 && value.front() == '%' &&
        std::from_chars(value.data() + 1, value.data() + 3, code, 16).ptr == value.data() + 3) {
      out += static_cast<char>(code);
      value.remove_prefix(3);
    } else {
      out += value.front();
      value.remove_prefix(1);
    }
  }
  return out;
}

}  // namespace

std::string socketPath(std::string_view busAddress) {
  constexpr std::string_view transport = "unix:";
  constexpr std::string_view key = "path=";
  std::string_view address = busAddress.substr(0, busAddress.find(';'));
  if (!address.starts_with(transport)) {
    return {};
  }
  address.remove_prefix(transport.size());
  while (!address.empty()) {
    const std::string_view pair = address.substr(0, address.find(','));
    if (pair.starts_with(key)) {
      return unescaped(pair.substr(key.size()));
    }
    address.remove_prefix(std::min(pair.size() + 1, address.size()));
  }
  return {};
}

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
