// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QWidget>
#include <functional>
#include <optional>
#include <vector>

#include "settings/conversation/window_state.hpp"

namespace vantora {

/// The picture in the bar, in the text colour on a piece of bar: pixel for pixel, or larger.
class StatusPreview final : public QWidget {
  Q_OBJECT

 public:
  /// `magnification`: 1 shows the picture as it is, 2 at twice its size.
  explicit StatusPreview(int magnification = 1);

  void show(const StatusPicture& picture);

  /// The preview in a frame as wide as there is place, which scrolls under a wider
  /// picture. The frame owns the preview.
  [[nodiscard]] QWidget* inScrollArea();

  /// What a block's tool tip says. Without it there is none.
  std::function<QString(const UUID& module)> describe;
  /// A block was clicked. Without it blocks are no targets.
  std::function<void(const UUID& module)> onBlock;

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  bool event(QEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void leaveEvent(QEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  [[nodiscard]] QRect placeOf(const PictureBlock& block) const;
  [[nodiscard]] const PictureBlock* blockAt(QPoint position) const;
  void point(std::optional<UUID> module);

  int magnification_;
  QImage ink_;  // alpha alone
  std::vector<PictureBlock> blocks_;
  std::optional<UUID> pointed_;
};

/// The line below a preview; while nothing is measured it says that.
[[nodiscard]] QString previewCaption(bool isPaused);

}  // namespace vantora
