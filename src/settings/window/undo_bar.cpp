// SPDX-License-Identifier: MIT
#include "settings/window/undo_bar.hpp"

#include <QApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLineEdit>
#include <QShortcut>

#include "settings/window/controls/controls.hpp"
#include "settings/window/controls/qt_text.hpp"

namespace vantora {
namespace {

const char* undoneText(UndoableEdit edit) {
  switch (edit) {
    case UndoableEdit::removal:
      return "Módulo removido.";
    case UndoableEdit::importing:
      return "A importação pode ser desfeita.";
    case UndoableEdit::restoring:
      return "Configuração padrão restaurada.";
  }
  return "";
}

// Whether the field with the focus has typing of its own to take back.
bool hasOwnUndo() {
  const QWidget* focused = QApplication::focusWidget();
  const auto* line = qobject_cast<const QLineEdit*>(focused);
  if (line == nullptr && focused != nullptr) {  // A stepper has the focus for its line.
    line = focused->findChild<QLineEdit*>();
  }
  return line != nullptr && line->isUndoAvailable();
}

}  // namespace

UndoBar::UndoBar(WindowModel& model)
    : model_(model),
      text_(Controls::makeText()),
      button_(Controls::makeButton("Desfazer", [this] { model_.undo(); })) {
  setObjectName(QStringLiteral("undoBar"));
  auto* row = new QHBoxLayout(this);
  row->setContentsMargins(0, 0, 0, 0);
  text_->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Preferred);
  row->addWidget(text_);
  row->addWidget(button_);
  const QKeySequence keys(QKeySequence::Undo);
  button_->setToolTip(QStringLiteral("Desfazer (%1)").arg(keys.toString(QKeySequence::NativeText)));
  new QShortcut(keys, this, [this] { model_.undo(); });
  qApp->installEventFilter(this);
  hide();
}

UndoBar::~UndoBar() {
  qApp->removeEventFilter(this);
}

void UndoBar::refresh() {
  const auto& edit = model_.state().undoable;
  if (edit) {
    text_->setText(qtText(undoneText(*edit)));
  }
  setVisible(edit.has_value());
}

void UndoBar::setTextShown(bool isShown) {
  text_->setVisible(isShown);
}

// A text field claims the key whether or not it has anything to take back.
bool UndoBar::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::ShortcutOverride && isVisible() && !hasOwnUndo() &&
      static_cast<QKeyEvent*>(event)->matches(QKeySequence::Undo)) {
    event->ignore();
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

}  // namespace vantora
