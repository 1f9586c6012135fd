// SPDX-License-Identifier: MIT
#pragma once

#include "settings/login_item.hpp"

namespace vantora {

/// The application itself as a login item (SMAppService.mainAppService).
class AppServiceLoginItem final : public LoginItem {
 public:
  [[nodiscard]] LoginItemStatus status() override;
  [[nodiscard]] std::optional<Fault> setRegistered(bool registered) override;
};

}  // namespace vantora
