// SPDX-License-Identifier: MIT
//
// What the tabs of the quotas show of them.
#include <gtest/gtest.h>

#include <QComboBox>
#include <QDateTime>

#include "settings/window/tabs/tabs_fixture.hpp"

namespace vantora {
namespace {

using test::claudeTab;
using test::codex;
using test::codexTab;

using TabsTest = test::TabsFixture;

TEST_F(TabsTest, OfferTheCategoriesAndStoreNoneForTheAutomaticChoice) {
  agent_.codex.candidates = {{"a", "Alfa"}, {"b", std::nullopt}};
  tellAll();
  auto* picker = control<QComboBox>(codexTab, QStringLiteral("Categoria semanal"));
  ASSERT_EQ(picker->count(), 3);
  EXPECT_EQ(picker->itemText(0), QStringLiteral("Automática, se inequívoca"));
  EXPECT_EQ(picker->itemText(1), QStringLiteral("Alfa (a)"));
  EXPECT_EQ(picker->itemText(2), QStringLiteral("b"));
  EXPECT_EQ(picker->currentIndex(), 0);
  picker->setCurrentIndex(2);
  EXPECT_EQ(sentConfiguration().codexSettings->selectedLimitID, "b");
  picker->setCurrentIndex(0);
  EXPECT_EQ(sentConfiguration().codexSettings->selectedLimitID, std::nullopt);
  codex(agent_.configuration).selectedLimitID = "a";
  tellAll();
  EXPECT_EQ(picker->currentIndex(), 1);
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, KeepAChosenCategoryThatIsNotOfferedAnyMore) {
  codex(agent_.configuration).selectedLimitID = "gone";
  tellAll();
  auto* picker = control<QComboBox>(codexTab, QStringLiteral("Categoria semanal"));
  EXPECT_EQ(picker->currentText(), QStringLiteral("gone"));
  EXPECT_TRUE(sent().empty());
}

TEST_F(TabsTest, ShowTheStatesOfTheQuotas) {
  agent_.codex.message = "Faça <b>login</b>.";
  agent_.codex.lastSuccess = WallTime(std::chrono::seconds(1'790'000'000));
  agent_.codex.executable = "/usr/bin/codex";
  agent_.claude.message = "Integração desativada.";
  agent_.claude.executable = "Claude Code (claude) não encontrado";
  tellAll();
  EXPECT_TRUE(texts(codexTab).contains(QStringLiteral("Estado: Faça <b>login</b>.\n")));
  EXPECT_TRUE(texts(codexTab).contains(QStringLiteral("Última consulta confirmada: ") +
                                       QDateTime::fromSecsSinceEpoch(1'790'000'000)
                                           .toString(QStringLiteral("dd/MM/yyyy HH:mm:ss\n"))));
  EXPECT_TRUE(texts(codexTab).contains(QStringLiteral("Codex CLI: /usr/bin/codex\n")));
  EXPECT_TRUE(texts(claudeTab).contains(QStringLiteral("Estado: Integração desativada.\n")));
  EXPECT_TRUE(texts(claudeTab).contains(QStringLiteral("Última consulta confirmada: —\n")));
  EXPECT_TRUE(texts(claudeTab).contains(
      QStringLiteral("Claude Code: Claude Code (claude) não encontrado\n")));
}

}  // namespace
}  // namespace vantora
