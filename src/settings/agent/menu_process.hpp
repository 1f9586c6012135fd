// SPDX-License-Identifier: MIT
//
// A menu as a child process: the agent's end of the menu conversation. The program lives
// while its menu is open, so that the agent needs no toolkit to show one. Main thread only.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "ports/popup_menu.hpp"
#include "process/child_process.hpp"
#include "runtime/task_queue.hpp"
#include "settings/agent/child_conversation.hpp"
#include "settings/conversation/menu_protocol.hpp"

namespace vantora {

/// A program that does not start, dies or breaks the protocol is ended and reported to
/// onFailure. The agent goes on.
class MenuProcess final : public PopupMenu {
 public:
  /// A menu that is not on the screen after so long hangs.
  static constexpr Seconds openLimit{20};

  struct Parts {
    TaskQueue& queue;  ///< The main queue.
    ChildProcessLauncher& launcher;
    std::string executable;  ///< The menu's program, an absolute path.
    /// What the program needs to show its menu where the click was.
    std::map<std::string, std::string> environmentChanges;
  };

  /// The environment of a menu on the X11 display of DISPLAY: in a Wayland session the
  /// toolkit would choose that, where only a window can have a menu. `busAddress` is the
  /// session bus's; empty without one, where the toolkit would start one and leave it.
  [[nodiscard]] static std::map<std::string, std::string> onX11(const std::string& busAddress);

  /// The queue must live as long as this is used; the launcher must still be there when
  /// it ends.
  explicit MenuProcess(Parts parts);
  MenuProcess(const MenuProcess&) = delete;
  MenuProcess& operator=(const MenuProcess&) = delete;

  void open(const MenuContent& content, OnChosen onChosen) override;
  void close() override;

  /// A menu could not be opened, or ended by a fault: why, for the user.
  std::function<void(const std::string& message)> onFailure;

 private:
  [[nodiscard]] bool received(std::string_view line);
  void ended(ChildExit exit);
  void fail(const std::string& message);
  void forget();
  [[nodiscard]] bool chosen(std::int32_t id);

  Parts parts_;

  // Of the open menu.
  ChildConversation conversation_;
  std::vector<MenuEntry> entries_;
  OnChosen onChosen_;
  bool isShown_ = false;
  TimerHandle openTimer_;
};

}  // namespace vantora
