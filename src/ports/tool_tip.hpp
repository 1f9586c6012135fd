// SPDX-License-Identifier: MIT
//
// A tool tip at the pointer, for a status item whose panel shows none.
#pragma once

#include "ports/menu_content.hpp"

namespace vantora {

/// At most one tool tip is shown. Lives on the main thread.
class ToolTip {
 public:
  virtual ~ToolTip() = default;

  /// Shows the text, in place of one that is shown, for as long as tool tips last on this
  /// desktop. Returns at once.
  virtual void show(const ToolTipContent& content) = 0;

  /// Takes the tool tip away, if one is shown or on its way.
  virtual void hide() = 0;
};

}  // namespace vantora
