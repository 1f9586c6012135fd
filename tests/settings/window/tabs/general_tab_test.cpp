// SPDX-License-Identifier: MIT
#include "settings/window/tabs/general_tab.hpp"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QCheckBox>
#include <QMessageBox>

#include "model/words.hpp"
#include "settings/window/tabs/tabs_fixture.hpp"

namespace vantora {
namespace {

using namespace SettingsProtocol;
using test::generalTab;

using TabsTest = test::TabsFixture;

TEST_F(TabsTest, ShowWhatTheSystemSaysAboutTheLoginItem) {
  auto* box = control<QCheckBox>(generalTab, spokenName(Words::startAtLoginLabel));
  box->click();
  EXPECT_TRUE(sentOne<StartAtLogin>()->enabled);
  EXPECT_FALSE(box->isChecked());
  agent_.loginItemStatus = LoginItemStatus::enabled;
  tell({WindowField::loginItemStatus});
  EXPECT_TRUE(box->isChecked());
  box->click();
  EXPECT_FALSE(sentOne<StartAtLogin>()->enabled);
  EXPECT_TRUE(box->isChecked());
  agent_.loginItemStatus = LoginItemStatus::requiresApproval;
  tell({WindowField::loginItemStatus});
  EXPECT_FALSE(box->isChecked());
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, AskBeforeTheDefaultsAreRestored) {
  agent_.backupPath = "/home/ana/.config/Vantora/configuration.backup.json";
  tell({WindowField::backupPath});
  const auto answer = [&](const char* label) {
    click(generalTab, "Restaurar padrão");
    QApplication::processEvents();
    auto* question = view_->findChild<QMessageBox*>();
    ASSERT_NE(question, nullptr);
    EXPECT_TRUE(question->informativeText().endsWith(
        QStringLiteral("\n/home/ana/.config/Vantora/configuration.backup.json")));
    EXPECT_TRUE(sent().empty());
    for (QAbstractButton* button : question->buttons()) {
      if (button->text().remove(QLatin1Char('&')) == QLatin1String(label)) {
        button->click();
      }
    }
    QApplication::processEvents();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  };
  answer("Cancelar");
  EXPECT_TRUE(sent().empty());
  answer("Restaurar");
  EXPECT_EQ(sentOne<Intent>(), Intent::restoreDefaults);
}

}  // namespace
}  // namespace vantora
