// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "ports/settings_window.hpp"

namespace vantora {

/// A settings window that is another program's, and comes to the front when it is shown.
/// macOS activates an application only when the active one lets it: the agent, which the user
/// has just clicked, becomes active and yields to the window's program.
class ForegroundSettingsWindow final : public SettingsWindow {
 public:
  /// `identifier` is the bundle identifier of the window's program.
  ForegroundSettingsWindow(std::unique_ptr<SettingsWindow> window, std::string identifier);

  void show(std::string_view activationToken) override;
  [[nodiscard]] bool isVisible() const override { return window_->isVisible(); }
  void showStatus(const StatusPresentation& presentation) override;
  void close() override { window_->close(); }

 private:
  const std::unique_ptr<SettingsWindow> window_;
  const std::string identifier_;
};

}  // namespace vantora
