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

#include "runtime/line_framer.hpp"
#include "settings/settings_protocol.hpp"
#include "settings/window_state.hpp"

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
  /// One file, no folder; `message` tells the user which.
  virtual void chooseExecutable(const std::string& message, Done done) = 0;
};

class WindowModel {
 public:
  /// Takes a line, with its line feed, to the agent.
  using Send = std::function<void(std::string_view line)>;

  /// `panels` must outlive the model.
  WindowModel(Send send, FilePanels& panels);
  WindowModel(const WindowModel&) = delete;
  WindowModel& operator=(const WindowModel&) = delete;

  /// Begins the conversation, or tells that the window moved to a screen of another
  /// scale (pixels in a point).
  void setScale(double scale);

  /// What came from the agent. False when it is not the conversation of this protocol:
  /// the window is to end.
  [[nodiscard]] bool receive(std::string_view bytes);

  /// Empty until the agent's first message.
  [[nodiscard]] const WindowState& state() const { return state_; }
  [[nodiscard]] bool hasState() const { return hasState_; }

  /// What to show as the last message: this window's own, or the agent's.
  [[nodiscard]] const std::optional<std::string>& notice() const {
    return ownNotice_ ? ownNotice_ : state_.notice;
  }

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

  void refreshCodex() { send(SettingsProtocol::Intent::refreshCodex); }
  void connectCodex() { send(SettingsProtocol::Intent::connectCodex); }
  void refreshClaude() { send(SettingsProtocol::Intent::refreshClaude); }
  void restoreDefaults() { send(SettingsProtocol::Intent::restoreDefaults); }
  void setStartAtLogin(bool enabled) { send(SettingsProtocol::StartAtLogin{enabled}); }
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
  void takeOver(const SettingsProtocol::StateChange& change, WindowState next);
  void edit(AppConfiguration configuration, std::optional<UUID> pendingScrollID);
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
};

}  // namespace vantora
