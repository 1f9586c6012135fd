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
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "model/configuration.hpp"
#include "model/network_link.hpp"
#include "model/sample.hpp"
#include "model/uuid.hpp"
#include "runtime/task_queue.hpp"
#include "runtime/worker.hpp"
#include "settings/configuration_store.hpp"
#include "settings/login_item.hpp"
#include "settings/undoable_edit.hpp"
#include "settings/user_defaults.hpp"

namespace vantora {

class SettingsModel {
 public:
  /// From the last change to the save.
  static constexpr Seconds saveDelay{0.4};
  /// From a save that failed to the next attempt, doubled by each one that fails.
  static constexpr Seconds minRetryInterval{10};
  static constexpr Seconds maxRetryInterval{600};

  enum class Field : std::uint8_t {
    configuration,
    snapshot,
    notice,
    loginItemStatus,
    pendingScrollID,
    codexExecutable,  ///< The user's choice, which the user defaults hold.
    undoable,
    links,
    square,
  };

  /// Loads the configuration, here and now. Everything that is referred to must outlive the
  /// model; `queue` is the main queue and `worker`, which belongs to it, writes and reads
  /// the files from then on. `loginItem` and `defaults` are used by the worker and must not
  /// end before its work.
  SettingsModel(TaskQueue& queue, Worker& worker, ConfigurationStore store, LoginItem& loginItem,
                UserDefaults& defaults);
  SettingsModel(const SettingsModel&) = delete;
  SettingsModel& operator=(const SettingsModel&) = delete;

  [[nodiscard]] const AppConfiguration& configuration() const { return configuration_; }
  /// Where the first save will keep a document that could not be used; nothing once it has,
  /// or when there is none.
  [[nodiscard]] const std::optional<std::filesystem::path>& keepAs() const { return keepAs_; }
  /// Puts the configuration in force at once, valid or not. It is saved (if valid) 0.4 s
  /// after the last change; a save that has not begun when the model ends is dropped. One
  /// that failed is tried again with the next change and by itself. A configuration equal
  /// to that in force does nothing at all.
  /// With `undoable`, undo() brings the configuration before it back, until the next change.
  void setConfiguration(AppConfiguration configuration,
                        std::optional<UndoableEdit> undoable = std::nullopt);
  /// Puts the default configuration in force; can be undone.
  void restoreDefaults();
  /// Which edit undo() takes back; nothing once the configuration has changed again.
  [[nodiscard]] std::optional<UndoableEdit> undoable() const { return undoable_; }
  /// Brings back the configuration before that edit, and a module that it removed into view.
  void undo();

  /// Where the store keeps the document that the latest save replaced.
  [[nodiscard]] const std::filesystem::path& backupFile() const { return store_.backupURL(); }

  [[nodiscard]] const MetricSnapshot& snapshot() const { return snapshot_; }
  void setSnapshot(MetricSnapshot snapshot);

  /// The machine's network interfaces, as last asked for through onLinksWanted; empty before.
  [[nodiscard]] const std::vector<NetworkLink>& links() const { return links_; }
  void setLinks(std::vector<NetworkLink> links);

  /// Whether the panel in use keeps one square of the picture.
  [[nodiscard]] bool keepsSquare() const { return keepsSquare_; }
  void setKeepsSquare(bool keepsSquare);
  /// The module that the user chose for the square. Read from the user defaults once there is
  /// such a panel; nothing before, and when the choice is left to the program.
  [[nodiscard]] const std::optional<UUID>& squareModule() const { return squareModule_; }
  /// Takes effect at once and is stored in the background; a failure is in the notice.
  void setSquareModule(std::optional<UUID> module);

  /// The last message for the user.
  [[nodiscard]] const std::optional<std::string>& notice() const { return notice_; }
  /// Puts a message of the window's own host in the notice's place.
  void report(std::string message) { setNotice(std::move(message)); }

  [[nodiscard]] LoginItemStatus loginItemStatus() const { return loginItemStatus_; }
  /// Both ask the system in the background. The second one then sets the notice.
  void refreshLoginStatus();
  void setStartAtLogin(bool enabled);

  /// The module that the list of modules is to bring into view.
  [[nodiscard]] const std::optional<UUID>& pendingScrollID() const { return pendingScrollID_; }
  void setPendingScrollID(std::optional<UUID> id);

  /// What a panel yielded: the path that the user chose, nothing when the user cancelled,
  /// which changes nothing. They finish later and then set the notice.
  void exportJSON(const std::optional<std::filesystem::path>& chosen);
  void importJSON(const std::optional<std::filesystem::path>& chosen);
  void selectCodexExecutable(const std::optional<std::filesystem::path>& chosen);

  std::function<void(const AppConfiguration&)> onConfigurationChange;
  std::function<void()> onQuotaRefresh;
  std::function<void()> onQuotaConnect;
  std::function<void()> onCodexExecutableChange;
  std::function<void()> onClaudeRefresh;
  /// The user is about to choose a network interface: setLinks() is to be called.
  std::function<void()> onLinksWanted;
  std::function<void(const std::optional<UUID>& module)> onSquareModuleChange;
  /// A save failed: what the user is to read, once until one succeeds. The notice says it too.
  std::function<void(const std::string& message)> onSaveFailure;
  /// After any of the fields took another value: for the model's view.
  std::function<void(Field)> onFieldChange;

 private:
  void save();
  void saved(std::optional<std::string> notice, bool wasValid);
  void saveFailed(const std::string& message);
  template <typename Work, typename Done>
  void runInBackground(Work work, Done done);
  void setNotice(std::optional<std::string> notice);
  void takeSquareModule(const std::optional<UUID>& module);
  void setLoginItemStatus(LoginItemStatus status);
  void changed(Field field) const;

  TaskQueue& queue_;
  Worker& worker_;
  ConfigurationStore store_;
  LoginItem& loginItem_;
  UserDefaults& defaults_;
  AppConfiguration configuration_;
  std::optional<UndoableEdit> undoable_;
  AppConfiguration beforeUndoable_;  // the configuration that the edit of undoable_ replaced
  std::optional<std::filesystem::path> keepAs_;
  MetricSnapshot snapshot_;
  std::vector<NetworkLink> links_;
  bool keepsSquare_ = false;
  bool isSquareModuleKnown_ = false;  // read, or chosen since
  std::optional<UUID> squareModule_;
  std::optional<std::string> notice_;
  LoginItemStatus loginItemStatus_ = LoginItemStatus::notRegistered;
  std::optional<UUID> pendingScrollID_;
  TimerHandle saveWork_;
  bool isSaving_ = false;
  bool isSaveDue_ = false;  // another one, once that has ended
  bool hasToldFailure_ = false;
  Seconds retryInterval_ = minRetryInterval;
  std::shared_ptr<int> alive_ = std::make_shared<int>(0);  // held weakly by what runs later
};

}  // namespace vantora
