// SPDX-License-Identifier: MIT
//
// A tool tip as a child process, as the menu is (menu_process.hpp). Main thread only.
#pragma once

#include <functional>
#include <string>

#include "ports/tool_tip.hpp"
#include "settings/agent/child_conversation.hpp"
#include "settings/agent/menu_process.hpp"

namespace vantora {

/// The program is sent the text and answers nothing. A fault in it does not harm the agent.
class ToolTipProcess final : public ToolTip {
 public:
  /// As for MenuProcess.
  explicit ToolTipProcess(MenuProcess::Parts parts);
  ToolTipProcess(const ToolTipProcess&) = delete;
  ToolTipProcess& operator=(const ToolTipProcess&) = delete;

  void show(const ToolTipContent& content) override;
  void hide() override;

  /// A tool tip could not be shown: for the user, once and not at every visit of the
  /// pointer.
  std::function<void(const std::string& message)> onFailure;

 private:
  void ended(ChildExit exit);
  void fail();

  MenuProcess::Parts parts_;
  ChildConversation conversation_;
  bool hasFailed_ = false;
};

}  // namespace vantora
