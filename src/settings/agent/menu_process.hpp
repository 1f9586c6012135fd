// SPDX-License-Identifier: MIT
//
// A menu as a child process: the agent's end of the menu conversation. The program lives
// while its menu is open, so that the agent needs no toolkit to show one. Main thread only.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "app/popup_menu.hpp"
#include "runtime/child_process.hpp"
#include "runtime/line_framer.hpp"
#include "runtime/task_queue.hpp"
#include "settings/menu_protocol.hpp"

namespace vantora {

/// A program that does not come up, dies, or says what the conversation does not know is
/// ended and told of; it costs the agent nothing else.
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
  void received(std::string_view bytes);
  void ended(ChildExit exit);
  void fail(const std::string& message);
  void forget();
  [[nodiscard]] bool handle(const MenuProtocol::MenuAnswer& answer);
  [[nodiscard]] bool chosen(std::int32_t id);

  Parts parts_;

  // Of the open menu.
  std::unique_ptr<ChildProcess> child_;
  LineFramer framer_{MenuProtocol::agentReadLimit};
  std::vector<MenuEntry> entries_;
  OnChosen onChosen_;
  bool isShown_ = false;
  TimerHandle openTimer_;
};

}  // namespace vantora
