// SPDX-License-Identifier: MIT
#include "settings/window/footer.hpp"

#include <QHBoxLayout>
#include <algorithm>

#include "settings/window/controls/controls.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora {

Footer::Footer(WindowModel& model)
    : content_(new QWidget),
      paused_(Controls::makeText(qtText("Coleta pausada"))),
      notice_(Controls::makeText()),
      undo_(new UndoBar(model)) {
  setWidgetResizable(true);
  setFrameShape(QFrame::NoFrame);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  setFocusPolicy(Qt::NoFocus);
  QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
  policy.setHeightForWidth(true);
  setSizePolicy(policy);
  auto* row = new QHBoxLayout(content_);
  row->setContentsMargins(0, 0, 0, 0);
  row->setSpacing(2 * row->spacing());
  paused_->setObjectName(QStringLiteral("footerPaused"));
  paused_->setWordWrap(false);
  notice_->setObjectName(QStringLiteral("footerNotice"));
  notice_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  for (QWidget* part : {static_cast<QWidget*>(paused_), static_cast<QWidget*>(notice_),
                        static_cast<QWidget*>(undo_)}) {
    part->hide();
    row->addWidget(part);
  }
  setWidget(content_);
  // The window's own ground shows through.
  viewport()->setAutoFillBackground(false);
  content_->setAutoFillBackground(false);
  hide();
}

void Footer::showPaused(bool isPaused) {
  paused_->setVisible(isPaused);
  showIfNeeded();
}

void Footer::showNotice(const std::optional<std::string>& notice) {
  notice_->setText(qtText(notice.value_or(std::string())));
  notice_->setVisible(notice.has_value());
  undo_->setTextShown(!notice.has_value());
  showIfNeeded();
}

void Footer::refreshUndo() {
  undo_->refresh();
  showIfNeeded();
}

void Footer::showIfNeeded() {
  setVisible(!paused_->isHidden() || !notice_->isHidden() || !undo_->isHidden());
  updateGeometry();
}

int Footer::heightForWidth(int width) const {
  const int least = minimumSizeHint().height();
  const int whole = content_->layout()->totalHeightForWidth(width);
  const int most = std::max(least, window()->height() / 3);
  return std::clamp(whole >= 0 ? whole : content_->sizeHint().height(), least, most);
}

QSize Footer::sizeHint() const {
  return content_->sizeHint();
}

// One line, or the button.
QSize Footer::minimumSizeHint() const {
  const int line = fontMetrics().height();
  return {0, undo_->isHidden() ? line : std::max(line, undo_->minimumSizeHint().height())};
}

}  // namespace vantora
