// SPDX-License-Identifier: MIT
#pragma once

#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include "settings/conversation/window_model.hpp"

namespace vantora {

/// A line of the footer, visible while the latest edit can be undone, with a button that does
/// so, as Ctrl+Z does anywhere in the window. A field in which something was typed keeps that
/// key for its own text.
class UndoBar final : public QWidget {
 public:
  explicit UndoBar(WindowModel& model);
  ~UndoBar() override;

  /// Brings the line to the model's state.
  void refresh();

  /// Whether it says in words what can be undone.
  void setTextShown(bool isShown);

  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  WindowModel& model_;
  QLabel* text_;
  QPushButton* button_;
};

}  // namespace vantora
