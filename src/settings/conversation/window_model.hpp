// SPDX-License-Identifier: MIT
//
// The window's end of the settings conversation: what the agent says, kept as one state,
// and what the user does, as edits of the configuration and as intents. It holds no rule
// beyond the number of modules: the agent accepts or refuses. One thread, that of the
// window; callbacks run inside the call that causes them.
#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "process/line_framer.hpp"
#include "settings/conversation/settings_protocol.hpp"
#include "settings/conversation/window_state.hpp"

namespace vantora {

/// The desktop's own file dialogs. Each calls `done` once, not inside the call, with the
/// path that the user chose or with nothing when the user cancelled.
class FilePanels {
 public:
  using Done = std::function<void(std::optional<std::filesystem::path> chosen)>;
  virtual ~FilePanels() = default;

  /// Where to save a JSON document; the user may agree to replace a file.
  virtual void chooseExport(const std::string& proposedName, Done done) = 0;
  /// One JSON document to open.
  virtual void chooseImport(Done done) = 0;
  /// One file, no folder; `message` says which.
  virtual void chooseExecutable(const std::string& message, Done done) = 0;
};

/// Why no module can be added to a full list.
inline constexpr const char* tooManyModulesText =
    "A barra já tem 24 módulos, o máximo. Remova um para adicionar outro.";

class WindowModel {
 public:
  /// Takes a line, with its line feed, to the agent.
  using Send = std::function<void(std::string_view line)>;

  /// `panels` must outlive the model.
  WindowModel(Send send, FilePanels& panels);
  WindowModel(const WindowModel&) = delete;
  WindowModel& operator=(const WindowModel&) = delete;

  /// Begins the conversation, or reports that the window moved to a screen of another
  /// scale (pixels in a point).
  void setScale(double scale);

  /// What came from the agent. False when it is not the conversation of this protocol:
  /// the window is to end.
  [[nodiscard]] bool receive(std::string_view bytes);

  /// Empty until the agent's first message.
  [[nodiscard]] const WindowState& state() const { return state_; }
  [[nodiscard]] bool hasState() const { return hasState_; }

  /// What to show as the last message: this window's own, until the user's next action, or
  /// the agent's, at least until releaseNotice().
  [[nodiscard]] const std::optional<std::string>& notice() const {
    return ownNotice_ ? ownNotice_ : state_.notice ? state_.notice : heldNotice_;
  }
  /// The notice was shown long enough: one that the agent has cleared goes.
  void releaseNotice();

  // Edits. Each takes effect here and at the agent at once.

  void setConfiguration(AppConfiguration configuration);

  /// A module at the left end, to be brought into view. Refused with a notice at the
  /// most modules, as are the next three.
  void addModule();
  void addCodexModule();
  void addClaudeModule();
  /// A copy to the right of the module.
  void duplicateModule(const UUID& id);
  void removeModule(const UUID& id);
  /// Puts the module where the one at `index` is; an index past the end means the end.
  void moveModule(const UUID& id, std::size_t index);

  // Intents.

  void refreshCodex() { ask(SettingsProtocol::Intent::refreshCodex); }
  void connectCodex() { ask(SettingsProtocol::Intent::connectCodex); }
  void refreshClaude() { ask(SettingsProtocol::Intent::refreshClaude); }
  void restoreDefaults() { ask(SettingsProtocol::Intent::restoreDefaults); }
  /// Takes back the edit that the state names as undoable; nothing without one.
  void undo();
  void setStartAtLogin(bool enabled) { ask(SettingsProtocol::StartAtLogin{enabled}); }
  /// Nothing leaves the module of the square to the agent.
  void setSquareModule(const std::optional<UUID>& module);
  /// Has the state's `links` brought up to date.
  void listLinks() { send(SettingsProtocol::Intent::listLinks); }
  void selectCodexExecutable();
  void exportJSON();
  void importJSON();

  /// The pending module is in view.
  void scrolled();

  /// After these fields took other values. A notice of the window's own counts as one.
  std::function<void(WindowFields)> onChange;
  /// The user asked for the window again: it is to come to the front.
  std::function<void(const std::string& activationToken)> onRaise;

 private:
  void send(const SettingsProtocol::WindowMessage& message);
  void ask(const SettingsProtocol::WindowMessage& message);
  [[nodiscard]] WindowFields dropOwnNotice();
  [[nodiscard]] bool received(std::string_view line);
  void takeOver(const SettingsProtocol::StateChange& change, WindowState next);
  void edit(AppConfiguration configuration, std::optional<UUID> pendingScrollID,
            bool isRemoval = false);
  void insert(const ModuleConfiguration& module, std::size_t index);
  void request(SettingsProtocol::PathIntent intent,
               const std::optional<std::filesystem::path>& chosen);
  void changed(WindowFields fields) const;

  Send send_;
  FilePanels& panels_;
  LineFramer framer_{SettingsProtocol::windowReadLimit};
  WindowState state_;
  bool hasState_ = false;
  std::optional<double> scale_;
  std::uint64_t revision_ = 0;  // of the latest configuration that went to the agent
  std::optional<std::string> ownNotice_;
  std::optional<std::string> heldNotice_;  // the agent's latest, until it was shown long enough
};

}  // namespace vantora
