// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>
#include <utility>

#include "settings/conversation/window_model.hpp"
#include "settings/window/controls/form.hpp"

namespace vantora {

/// One tab of the settings window. It shows the model's state and edits through it.
class SettingsTab : public QWidget {
 public:
  explicit SettingsTab(WindowModel& model) : model_(model) {}

  /// Brings the tab to the model's state, in which these fields are new.
  virtual void refresh(WindowFields fields) = 0;

 protected:
  [[nodiscard]] WindowModel& model() const { return model_; }
  [[nodiscard]] const WindowState& state() const { return model_.state(); }

  /// How a form edits the configuration.
  [[nodiscard]] Form<AppConfiguration>::Edit configurationEdit() const {
    return [&model = model_](const std::function<void(AppConfiguration&)>& change) {
      AppConfiguration next = model.state().configuration;
      change(next);
      model.setConfiguration(std::move(next));
    };
  }

 private:
  WindowModel& model_;
};

}  // namespace vantora
