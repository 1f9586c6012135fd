// SPDX-License-Identifier: MIT
//
// "Desfazer" in the window's footer.
#include <gtest/gtest.h>

#include <QLineEdit>
#include <QPushButton>

#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

class UndoBarTest : public test::WindowTest {
 protected:
  QWidget* bar() { return view_->findChild<QWidget*>(QStringLiteral("undoBar")); }
  void offer(std::optional<UndoableEdit> edit) {
    agent_.undoable = edit;
    tell({WindowField::undoable});
  }
  void pressUndo(QWidget* focused) {
    view_->activateWindow();
    focused->setFocus();
    settle();
    QTest::keyClick(focused, Qt::Key_Z, Qt::ControlModifier);
    settle();
  }
};

TEST_F(UndoBarTest, IsThereOnlyWhileTheLatestEditCanBeUndone) {
  EXPECT_FALSE(bar()->isVisible());
  for (const auto edit :
       {UndoableEdit::removal, UndoableEdit::importing, UndoableEdit::restoring}) {
    offer(edit);
    EXPECT_TRUE(bar()->isVisible());
    EXPECT_FALSE(bar()->findChild<QLabel*>()->text().isEmpty());
  }
  offer(std::nullopt);
  EXPECT_FALSE(bar()->isVisible());
}

TEST_F(UndoBarTest, AsksTheAgentByItsButton) {
  offer(UndoableEdit::importing);
  bar()->findChild<QPushButton*>()->click();
  EXPECT_EQ(sentOne<SettingsProtocol::Intent>(), SettingsProtocol::Intent::undo);
}

TEST_F(UndoBarTest, AsksTheAgentByTheKeyAlsoFromAFieldWhereNothingWasTyped) {
  offer(UndoableEdit::restoring);
  pressUndo(control<QSpinBox>(1, QStringLiteral("Margem horizontal")));
  EXPECT_EQ(sentOne<SettingsProtocol::Intent>(), SettingsProtocol::Intent::undo);
  pressUndo(view_->findChild<QTabWidget*>());
  EXPECT_EQ(sentOne<SettingsProtocol::Intent>(), SettingsProtocol::Intent::undo);
}

TEST_F(UndoBarTest, LeavesTheKeyToAFieldInWhichSomethingWasTyped) {
  offer(UndoableEdit::restoring);
  auto* field = control<QComboBox>(2, QStringLiteral("Interface de rede (vazio = automática)"));
  view_->activateWindow();
  field->setFocus();
  QTest::keyClicks(field, QStringLiteral("eth"));
  ASSERT_TRUE(field->lineEdit()->isUndoAvailable());
  (void)sent();
  pressUndo(field);
  EXPECT_TRUE(sent().empty());
  EXPECT_EQ(field->currentText(), QString());
}

TEST_F(UndoBarTest, AsksForNothingWithoutAnEditToUndo) {
  pressUndo(view_->findChild<QTabWidget*>());
  EXPECT_TRUE(sent().empty());
}

TEST_F(UndoBarTest, MarksARemovalForTheAgent) {
  model_->removeModule(UUID(agent_.configuration.modules[0].id));
  const auto change = sentOne<SettingsProtocol::NewConfiguration>();
  ASSERT_TRUE(change);
  EXPECT_TRUE(change->isRemoval);
  model_->addModule();
  const auto messages = sent();
  ASSERT_FALSE(messages.empty());
  const auto* added = std::get_if<SettingsProtocol::NewConfiguration>(&messages.front());
  ASSERT_NE(added, nullptr);
  EXPECT_FALSE(added->isRemoval);
}

}  // namespace
}  // namespace vantora
