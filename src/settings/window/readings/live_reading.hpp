// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QWidget>

namespace vantora {

/// A text that changes while the window is open: cut with an ellipsis where it is too long,
/// so that a new text never moves or resizes anything.
class LiveReading final : public QWidget {
  Q_OBJECT

 public:
  struct Content {
    QString label;  ///< Before the text, in a column of its own; may be empty.
    QString text;
    QString spoken;   ///< The accessible name.
    QString details;  ///< The tool tip and the accessible description.
    bool isFaint = false;
    bool isStrong = false;  ///< A reading, as opposed to the reason for none.
    bool operator==(const Content&) const = default;
  };

  /// As wide as `characters` digits when there is room, half of that at least.
  /// `labelWidth`: of the label's column, in pixels; it shrinks to two thirds of the widget.
  explicit LiveReading(int characters, int labelWidth = 0);

  void show(Content content);
  [[nodiscard]] const Content& content() const { return content_; }

  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  int characters_;
  int labelWidth_;
  Content content_;
};

}  // namespace vantora
