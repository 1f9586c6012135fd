// SPDX-License-Identifier: MIT
#pragma once

#include "settings/user_defaults.hpp"

namespace vantora {

/// The preferences of the application "local.vantora.Vantora", for every program of the
/// bundle alike.
class CFUserDefaults final : public UserDefaults {
 public:
  [[nodiscard]] std::optional<std::string> text(std::string_view key) override;
  [[nodiscard]] std::optional<Fault> setText(std::string_view key, std::string_view value) override;
};

}  // namespace vantora
