// SPDX-License-Identifier: MIT
//
// What the tabs of the two quota integrations say about what cannot be done now.
#include <gtest/gtest.h>

#include <QPushButton>

#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

using test::claudeTab;
using test::codexTab;

class QuotaActionsTest : public test::WindowTest {
 protected:
  QPushButton* button(int tab, const char* name) {
    return control<QPushButton>(tab, QString::fromUtf8(name));
  }
  bool saysThatAModuleIsMissing(int tab) {
    view_->setCurrentTab(tab);
    settle();
    return page(tab)->findChild<QWidget*>(QStringLiteral("missingModule"))->isVisible();
  }
  void enable() {
    agent_.configuration.codexSettings.emplace().enabled = true;
    agent_.configuration.claudeSettings.emplace().enabled = true;
    tellAll();
  }
  void addModules() {
    model_->addCodexModule();
    model_->addClaudeModule();
    (void)sent();
    tellAll();
  }
};

TEST_F(QuotaActionsTest, SayThatNoModuleShowsTheQuotaAndAddOne) {
  for (const auto& [tab, name, metric] :
       {std::tuple{codexTab, "Adicionar Codex semanal", MetricID::codexWeeklyPercent},
        std::tuple{claudeTab, "Adicionar Claude", MetricID::claudeWeeklyPercent}}) {
    EXPECT_TRUE(saysThatAModuleIsMissing(tab));
    button(tab, name)->click();
    EXPECT_EQ(sentConfiguration().modules.front().top, metric);
    tellAll();
    EXPECT_FALSE(saysThatAModuleIsMissing(tab));
    agent_.configuration.modules.front().enabled = false;
    tellAll();
    EXPECT_TRUE(saysThatAModuleIsMissing(tab));
  }
}

TEST_F(QuotaActionsTest, AddNoModuleWhereThereAreTheMost) {
  while (agent_.configuration.insertAtTop(ModuleConfiguration{})) {
  }
  for (ModuleConfiguration& module : agent_.configuration.modules) {
    module.id = UUID::random();
  }
  tellAll();
  const auto* add = button(claudeTab, "Adicionar Claude");
  EXPECT_FALSE(add->isEnabled());
  EXPECT_EQ(add->toolTip(), QStringLiteral("A barra já tem o máximo de módulos."));
}

TEST_F(QuotaActionsTest, SayWhyNothingIsQueriedNow) {
  const auto reasons = [&](const QString& reason) {
    for (const int tab : {codexTab, claudeTab}) {
      const auto* refresh = button(tab, "Atualizar agora");
      EXPECT_EQ(refresh->isEnabled(), reason.isEmpty()) << tab;
      EXPECT_EQ(refresh->toolTip(), reason) << tab;
      EXPECT_EQ(refresh->accessibleDescription(), reason) << tab;
    }
  };
  reasons(QStringLiteral("A integração está desativada."));
  enable();
  reasons(QStringLiteral("Nenhum módulo ativo mostra esta cota."));
  addModules();
  reasons(QString());
  agent_.configuration.paused = true;
  tellAll();
  reasons(QStringLiteral("A coleta está pausada."));
}

TEST_F(QuotaActionsTest, ConnectOnlyWhenCodexAsksForALogin) {
  enable();
  addModules();
  const auto* connect = button(codexTab, "Conectar pelo navegador");
  EXPECT_FALSE(connect->isEnabled());
  EXPECT_EQ(connect->toolTip(), QStringLiteral("O Codex não pede login agora."));
  agent_.codex.needsLogin = true;
  tell({WindowField::codex});
  EXPECT_TRUE(connect->isEnabled());
  EXPECT_EQ(connect->toolTip(), QString());
}

}  // namespace
}  // namespace vantora
