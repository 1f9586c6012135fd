// SPDX-License-Identifier: MIT
//
// The settings window, as the app coordinator sees it. What the window shows and changes
// goes past the coordinator, between the window and the settings model.
#pragma once

#include <string_view>

#include "status/status_presentation.hpp"

namespace vantora {

/// Lives on the main thread.
class SettingsWindow {
 public:
  virtual ~SettingsWindow() = default;

  /// Opens the window, or brings the open one to the front. `activationToken` is what the
  /// desktop gave with the click that asks for it (xdg-activation, startup notification);
  /// empty when it gave none. Returns at once; that the window could not be opened shows
  /// as isVisible() false.
  virtual void show(std::string_view activationToken) = 0;

  /// Whether the window is open, or on its way: readings are only worth passing on then.
  [[nodiscard]] virtual bool isVisible() const = 0;

  /// What the status item shows from now on: the window's preview and its warning.
  virtual void showStatus(const StatusPresentation& presentation) = 0;

  /// Closes the window, if it is open, without waiting for it.
  virtual void close() = 0;
};

}  // namespace vantora
