// SPDX-License-Identifier: MIT
//
// What the tabs of the two quota integrations say about what cannot be done now.
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>
#include <functional>
#include <string_view>

#include "model/configuration.hpp"

namespace vantora {

/// Says that no active module shows the quota, with a button that adds one. Visible only then.
class MissingModule final : public QWidget {
 public:
  /// `family` is the quota's; `add` adds a module that shows it.
  MissingModule(MetricFamily family, std::string_view buttonLabel, std::function<void()> add);

  void refresh(const AppConfiguration& configuration);

 private:
  MetricFamily family_;
  QPushButton* button_;
};

/// Why the quota is not queried now, in the user's words; empty when it is.
[[nodiscard]] std::string_view whyNotQueried(const AppConfiguration& configuration,
                                             MetricFamily family, bool isEnabled);

/// Enables the button, or disables it with the reason as its tool tip and as its description
/// for assistive tools.
void setReason(QPushButton* button, std::string_view reason);

}  // namespace vantora
