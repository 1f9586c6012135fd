// SPDX-License-Identifier: MIT
#pragma once

#include <QMenu>
#include <QTimer>
#include <functional>
#include <string_view>

#include "process/line_framer.hpp"
#include "settings/conversation/menu_protocol.hpp"

namespace vantora {

/// vantora-settings as a menu: the menu's end of the menu conversation
/// (docs/menu-protocol.md). It shows the one menu that the agent sends and reports what
/// was chosen.
class MenuProgram {
 public:
  struct Parts {
    std::function<void(std::string_view line)> write;
    /// There is nothing more to say: the menu is gone again, with status 0, or the agent
    /// said what is no menu, with 1. At most once.
    std::function<void(int status)> onEnd;
  };
  explicit MenuProgram(Parts parts);
  MenuProgram(const MenuProgram&) = delete;
  MenuProgram& operator=(const MenuProgram&) = delete;

  void receive(std::string_view bytes);

  [[nodiscard]] const QMenu& menu() const { return menu_; }

 private:
  void open(const MenuContent& content);
  void grab();
  void end(int status);

  Parts parts_;
  LineFramer framer_{MenuProtocol::menuReadLimit};
  QMenu menu_;
  QTimer grabTimer_;
  int grabsLeft_ = 0;
  bool hasOpened_ = false;
  bool hasEnded_ = false;
};

/// What main does for MenuProtocol::argument. Returns the exit status.
[[nodiscard]] int runMenuProgram(int argc, char** argv);

}  // namespace vantora
