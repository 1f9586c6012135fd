// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>

#include "settings/login_item.hpp"
#include "settings/user_defaults.hpp"

namespace vantora::test {

/// A system that takes every request, or fails, or answers a status of its own.
class FakeLoginItem final : public LoginItem {
 public:
  [[nodiscard]] LoginItemStatus status() override { return current; }
  [[nodiscard]] std::optional<Fault> setRegistered(bool registered) override {
    if (fault) {
      return fault;
    }
    current =
        forced.value_or(registered ? LoginItemStatus::enabled : LoginItemStatus::notRegistered);
    return std::nullopt;
  }

  LoginItemStatus current = LoginItemStatus::notRegistered;
  std::optional<LoginItemStatus> forced;  ///< What every request leads to.
  std::optional<Fault> fault;             ///< What every request answers.
};

class FakeUserDefaults final : public UserDefaults {
 public:
  [[nodiscard]] std::optional<std::string> text(std::string_view key) override {
    const auto found = texts.find(key);
    return found != texts.end() ? std::optional(found->second) : std::nullopt;
  }
  [[nodiscard]] std::optional<Fault> setText(std::string_view key,
                                             std::string_view value) override {
    if (fault) {
      return fault;
    }
    texts.insert_or_assign(std::string(key), std::string(value));
    return std::nullopt;
  }

  std::map<std::string, std::string, std::less<>> texts;
  std::optional<Fault> fault;  ///< What storing answers.
};

}  // namespace vantora::test
