// SPDX-License-Identifier: MIT
//
// The settings window as a child process: the agent's end of the settings conversation.
// The program lives while its window is open, so that its toolkit's memory goes with it
// and a fault in it never touches the agent. Main thread only.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "ports/settings_window.hpp"
#include "process/child_process.hpp"
#include "runtime/clock.hpp"
#include "runtime/task_queue.hpp"
#include "settings/agent/child_conversation.hpp"
#include "settings/conversation/settings_protocol.hpp"
#include "settings/settings_model.hpp"
#include "status/bitmap.hpp"

namespace vantora {

/// The window is sent one change at a time and answers when it has shown it: what changes
/// meanwhile goes with the next one. A window that is too slow costs the agent nothing,
/// and one that hangs is ended, as is one that breaks the protocol or floods the agent.
class SettingsProcess final : public SettingsWindow {
 public:
  /// A window that does not answer for so long hangs.
  static constexpr Seconds answerLimit{20};
  /// More messages than this within a second are a flood: a slider that is dragged sends
  /// at most one for each of the screen's frames.
  static constexpr int messagesPerSecond = 1'000;

  struct Parts {
    TaskQueue& queue;  ///< The main queue.
    const Clock& clock;
    ChildProcessLauncher& launcher;
    SettingsModel& model;
    std::string executable;  ///< The window's program, an absolute path.
    /// The picture as pixels at a scale.
    std::function<AlphaBitmap(const StatusImage&, double scale)> rasterise;
    /// What the providers say of the executables that they use.
    std::function<std::string()> codexExecutable;
    std::function<std::string()> claudeExecutable;
  };

  /// Takes the model's onFieldChange. What the parts refer to must live as long as this is
  /// used; only the launcher must still be there when it ends.
  explicit SettingsProcess(Parts parts);
  SettingsProcess(const SettingsProcess&) = delete;
  SettingsProcess& operator=(const SettingsProcess&) = delete;

  void show(std::string_view activationToken) override;
  [[nodiscard]] bool isVisible() const override { return conversation_.isOpen(); }
  void showStatus(const StatusPresentation& presentation) override;
  void close() override;

  /// The window could not be opened, or ended by a fault: why, for the user. The model's
  /// notice says the same, for the next window.
  std::function<void(const std::string& message)> onFailure;

 private:
  void start(std::string_view activationToken);
  [[nodiscard]] bool received(std::string_view line);
  void ended(ChildExit exit);
  void fail(const std::string& message);
  void forget();

  void handle(const SettingsProtocol::Ready& ready);
  void handle(const SettingsProtocol::Seen& seen);
  void handle(SettingsProtocol::NewConfiguration change);
  void handle(const SettingsProtocol::StartAtLogin& request);
  void handle(const SettingsProtocol::SquareModule& choice);
  void handle(SettingsProtocol::Intent intent);
  void handle(const SettingsProtocol::PathRequest& request);
  [[nodiscard]] bool isFlood();

  void touch();
  void flush();
  void awaitAnswer();
  [[nodiscard]] WindowState currentState();
  [[nodiscard]] StatusPicture pictureOf(const StatusPresentation& presentation, double scale);

  Parts parts_;
  std::shared_ptr<int> alive_ =
      std::make_shared<int>(0);  // what posted tasks and the model hold weakly
  StatusPresentation presentation_;
  bool isPictureOld_ = true;

  // Of the open window.
  ChildConversation conversation_;
  std::optional<double> scale_;  // nothing before the window is ready
  WindowState shown_;            // what the window shows, by what both sent
  bool wasShown_ = false;        // whether it was sent any state yet
  std::uint64_t revision_ = 0;   // the latest configuration that came from it
  std::uint64_t sequence_ = 0;   // of the latest change that went to it
  bool isAwaitingAnswer_ = false;
  bool isFlushPosted_ = false;
  TimerHandle answerTimer_;
  Seconds secondBegan_{0};
  int messagesThisSecond_ = 0;
};

}  // namespace vantora
