// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace vantora::test {

/// The property of a settings manager of X11 (XSETTINGS 0.5), setting by setting.
class XSettingsBytes {
 public:
  explicit XSettingsBytes(bool isBigEndian) : isBigEndian_(isBigEndian) {}

  XSettingsBytes& integer(std::string_view name, std::uint32_t value) {
    begin(0, name);
    put(value, 4);
    return *this;
  }
  XSettingsBytes& text(std::string_view name, std::string_view value) {
    begin(1, name);
    put(static_cast<std::uint32_t>(value.size()), 4);
    pad(value);
    return *this;
  }
  XSettingsBytes& color(std::string_view name) {
    begin(2, name);
    put(0x1234'5678, 4);
    put(0x9abc'def0, 4);
    return *this;
  }
  [[nodiscard]] std::vector<std::uint8_t> bytes() const {
    XSettingsBytes head(isBigEndian_);
    head.settings_ = {static_cast<std::uint8_t>(isBigEndian_ ? 1 : 0), 0, 0, 0};
    head.put(7, 4);  // the serial number
    head.put(count_, 4);
    head.settings_.insert(head.settings_.end(), settings_.begin(), settings_.end());
    return head.settings_;
  }

 private:
  void begin(std::uint8_t type, std::string_view name) {
    ++count_;
    settings_.push_back(type);
    settings_.push_back(0);
    put(static_cast<std::uint32_t>(name.size()), 2);
    pad(name);
    put(6, 4);  // the serial number of its last change
  }
  void put(std::uint32_t value, std::size_t bytes) {
    for (std::size_t index = 0; index < bytes; ++index) {
      const std::size_t place = isBigEndian_ ? bytes - 1 - index : index;
      settings_.push_back(static_cast<std::uint8_t>(value >> (8 * place)));
    }
  }
  void pad(std::string_view text) {
    settings_.insert(settings_.end(), text.begin(), text.end());
    settings_.insert(settings_.end(), (4 - text.size() % 4) % 4, 0);
  }

  bool isBigEndian_;
  std::uint32_t count_ = 0;
  std::vector<std::uint8_t> settings_;
};

}  // namespace vantora::test
