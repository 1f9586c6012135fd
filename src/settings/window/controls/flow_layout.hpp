// SPDX-License-Identifier: MIT
#pragma once

#include <QLayout>
#include <QList>

namespace vantora {

/// Widgets side by side like words: the next line begins where the width ends.
class FlowLayout final : public QLayout {
 public:
  explicit FlowLayout(int spacing);
  ~FlowLayout() override;

  void addItem(QLayoutItem* item) override { items_.append(item); }
  [[nodiscard]] int count() const override { return static_cast<int>(items_.size()); }
  [[nodiscard]] QLayoutItem* itemAt(int index) const override { return items_.value(index); }
  QLayoutItem* takeAt(int index) override;
  [[nodiscard]] Qt::Orientations expandingDirections() const override { return {}; }
  [[nodiscard]] bool hasHeightForWidth() const override { return true; }
  [[nodiscard]] int heightForWidth(int width) const override;
  [[nodiscard]] QSize sizeHint() const override;
  [[nodiscard]] QSize minimumSize() const override;
  void setGeometry(const QRect& rect) override;

 private:
  // The height that the items take within the width of `rect`; places them there.
  int arrange(const QRect& rect, bool isPlacing) const;

  QList<QLayoutItem*> items_;
};

}  // namespace vantora
