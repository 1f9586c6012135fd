// SPDX-License-Identifier: MIT
#pragma once

#include <QToolButton>
#include <functional>
#include <optional>

namespace vantora {

/// Moves the row that it belongs to: dragged with the mouse, with the arrow keys, Home and
/// End while it has the focus, or with the menu that a click opens.
class DragHandle final : public QToolButton {
 public:
  enum class Step { up, down, first, last };

  DragHandle();

  /// Whether the row is the first one or the last one: the menu's entries that would move it
  /// nowhere are disabled.
  void setPlace(bool isFirst, bool isLast);

  std::function<void(Step)> onStep;
  /// While the mouse drags: where it is on the screen.
  std::function<void(QPoint globalPosition)> onDrag;
  /// The end of a drag that onDrag reported; cancelled by Escape.
  std::function<void(bool isCancelled)> onDrop;

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  [[nodiscard]] QSize sizeHint() const override;

 private:
  void step(Step step) const;
  void drop(bool isCancelled);
  void openMenu();

  std::optional<QPoint> pressed_;
  bool isDragging_ = false;
};

}  // namespace vantora
