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

  /// How a form edits settings that the configuration may lack: a change stores them whole.
  template <auto Member, typename Settings>
  [[nodiscard]] typename Form<Settings>::Edit optionalEdit() const {
    return [edit = configurationEdit()](const std::function<void(Settings&)>& change) {
      edit([&](AppConfiguration& configuration) {
        Settings settings = (configuration.*Member).value_or(Settings{});
        change(settings);
        configuration.*Member = std::move(settings);
      });
    };
  }

 private:
  WindowModel& model_;
};

}  // namespace vantora
