// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QScrollArea>
#include <optional>
#include <string>

#include "settings/window/undo_bar.hpp"

namespace vantora {

/// The line below the tabs: that nothing is measured, the last notice, and what can be undone. It
/// is as high as its texts, and at most a third of the window's height: then it scrolls. Hidden
/// while it has nothing to say.
class Footer final : public QScrollArea {
 public:
  explicit Footer(WindowModel& model);

  void showPaused(bool isPaused);
  /// Takes the place of the text about the edit that can be undone, whose button stays.
  void showNotice(const std::optional<std::string>& notice);
  /// Brings what can be undone to the model's state.
  void refreshUndo();

  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 private:
  void showIfNeeded();

  QWidget* content_;
  QLabel* paused_;
  QLabel* notice_;
  UndoBar* undo_;
};

}  // namespace vantora
