// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QWidget>

#include "settings/window_state.hpp"

namespace vantora {

/// The picture in the bar, pixel for pixel, in the text colour on a piece of bar.
class StatusPreview final : public QWidget {
 public:
  StatusPreview();

  void show(const StatusPicture& picture);

  /// The preview in a frame as wide as there is place, which scrolls under a wider
  /// picture. The frame owns the preview.
  [[nodiscard]] QWidget* inScrollArea();

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  QImage ink_;  // alpha alone
};

}  // namespace vantora
