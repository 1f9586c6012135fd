// SPDX-License-Identifier: MIT
//
// What the settings window shows and changes: the configuration in force with its
// loading and delayed saving, the readings, the notice and whether the program starts
// with the session. What the user asks for beyond that goes to the callbacks. One for the
// life of the process; main thread only, callbacks run inside the call that causes them.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "model/configuration.hpp"
#include "model/sample.hpp"
#include "model/uuid.hpp"
#include "runtime/task_queue.hpp"
#include "settings/configuration_store.hpp"
#include "settings/login_item.hpp"
#include "settings/user_defaults.hpp"

namespace vantora {

class SettingsModel {
 public:
  /// From the last change to the save.
  static constexpr Seconds saveDelay{0.4};

  enum class Field : std::uint8_t {
    configuration,
    snapshot,
    notice,
    loginItemStatus,
    pendingScrollID,
  };

  /// Loads the configuration. Everything that is referred to must outlive the model;
  /// `queue` is the main queue.
  SettingsModel(TaskQueue& queue, ConfigurationStore store, LoginItem& loginItem,
                UserDefaults& defaults);
  SettingsModel(const SettingsModel&) = delete;
  SettingsModel& operator=(const SettingsModel&) = delete;

  [[nodiscard]] const AppConfiguration& configuration() const { return configuration_; }
  /// Puts the configuration in force at once, valid or not, and saves it (if valid)
  /// 0.4 s after the last change. One equal to that in force does nothing at all.
  void setConfiguration(AppConfiguration configuration);

  [[nodiscard]] const MetricSnapshot& snapshot() const { return snapshot_; }
  void setSnapshot(MetricSnapshot snapshot);

  /// The last message for the user.
  [[nodiscard]] const std::optional<std::string>& notice() const { return notice_; }
  /// Puts a message of the window's own host in the notice's place.
  void report(std::string message) { setNotice(std::move(message)); }

  [[nodiscard]] LoginItemStatus loginItemStatus() const { return loginItemStatus_; }
  void refreshLoginStatus();
  void setStartAtLogin(bool enabled);

  /// The module that the list of modules is to bring into view.
  [[nodiscard]] const std::optional<UUID>& pendingScrollID() const { return pendingScrollID_; }
  void setPendingScrollID(std::optional<UUID> id);

  /// What a panel yielded: the path that the user chose, nothing when the user cancelled,
  /// which changes nothing.
  void exportJSON(const std::optional<std::filesystem::path>& chosen);
  void importJSON(const std::optional<std::filesystem::path>& chosen);
  void selectCodexExecutable(const std::optional<std::filesystem::path>& chosen);

  std::function<void(const AppConfiguration&)> onConfigurationChange;
  std::function<void()> onQuotaRefresh;
  std::function<void()> onQuotaConnect;
  std::function<void()> onCodexExecutableChange;
  std::function<void()> onClaudeRefresh;
  /// After any of the fields took another value: for whoever shows the model.
  std::function<void(Field)> onFieldChange;

 private:
  void save();
  void setNotice(std::optional<std::string> notice);
  void changed(Field field) const;

  TaskQueue& queue_;
  ConfigurationStore store_;
  LoginItem& loginItem_;
  UserDefaults& defaults_;
  AppConfiguration configuration_;
  MetricSnapshot snapshot_;
  std::optional<std::string> notice_;
  LoginItemStatus loginItemStatus_ = LoginItemStatus::notRegistered;
  std::optional<UUID> pendingScrollID_;
  TimerHandle saveWork_;
};

}  // namespace vantora
