// SPDX-License-Identifier: MIT
//
// "Interface de rede": the list of the machine's links on the tab "Coleta".
#include <gtest/gtest.h>

#include <QLineEdit>

#include "settings/window/controls/link_picker.hpp"
#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

using test::samplingTab;

class LinkPickerTest : public test::WindowTest {
 protected:
  LinkPickerTest() {
    agent_.links = {{"lo", false, true, false}, {"wlp3s0", true, true, true}};
    tell({WindowField::links});
    picker_ =
        control<QComboBox>(samplingTab, QStringLiteral("Interface de rede (vazio = automática)"));
    view_->activateWindow();
    settle();
    (void)sent();
  }
  void type(const char* text) {
    picker_->setFocus();
    picker_->lineEdit()->selectAll();
    QTest::keyClick(picker_, Qt::Key_Delete);
    QTest::keyClicks(picker_, QString::fromLatin1(text));
  }
  void choose(int index) {
    picker_->setCurrentIndex(index);
    emit picker_->activated(index);
  }
  // What the tab says about a name that does not exist; empty while it says nothing.
  QString missing() {
    const auto* label = page(samplingTab)->findChild<QLabel*>(QStringLiteral("missingLink"));
    return label->isVisible() ? label->text() : QString();
  }

  QComboBox* picker_ = nullptr;
};

TEST_F(LinkPickerTest, ListsTheLinksWithTheirKindAndWhetherTheyAreAddressed) {
  ASSERT_EQ(picker_->count(), 3);
  EXPECT_EQ(picker_->itemText(0), QStringLiteral("automática"));
  EXPECT_EQ(picker_->itemText(1), QStringLiteral("lo · virtual, sem endereço"));
  EXPECT_EQ(picker_->itemText(2), QStringLiteral("wlp3s0 · física, com endereço"));
  EXPECT_EQ(linkDescription({"eth1", true, false, false}), "física, desligada");
}

TEST_F(LinkPickerTest, AsksForTheLinksWhenTheTabIsShownAndWhenTheInterfaceChanges) {
  view_->setCurrentTab(0);
  view_->setCurrentTab(samplingTab);
  settle();
  EXPECT_EQ(sentOne<SettingsProtocol::Intent>(), SettingsProtocol::Intent::listLinks);
  agent_.networkName = "eth7";
  tell({WindowField::networkName});
  EXPECT_EQ(sentOne<SettingsProtocol::Intent>(), SettingsProtocol::Intent::listLinks);
  view_->setCurrentTab(0);
  agent_.networkName = "eth8";
  tell({WindowField::networkName});
  EXPECT_TRUE(sent().empty());
}

TEST_F(LinkPickerTest, TakesANameOverOnEnterOnly) {
  type("eth0 ");
  EXPECT_TRUE(sent().empty());
  QTest::keyClick(picker_, Qt::Key_Return);
  EXPECT_EQ(sentConfiguration().networkInterface, "eth0");
  EXPECT_EQ(missing(), QStringLiteral("⚠ “eth0” não existe nesta máquina."));
  QTest::keyClick(picker_, Qt::Key_Return);
  EXPECT_TRUE(sent().empty());
}

TEST_F(LinkPickerTest, TakesANameOverWhenTheFocusLeaves) {
  type("wlp3s0");
  view_->findChild<QTabWidget*>()->setFocus();
  EXPECT_EQ(sentConfiguration().networkInterface, "wlp3s0");
  EXPECT_EQ(missing(), QString());
}

TEST_F(LinkPickerTest, TakesTheNameWithoutItsDescriptionOfWhatIsChosen) {
  choose(2);
  EXPECT_EQ(sentConfiguration().networkInterface, "wlp3s0");
  EXPECT_EQ(picker_->currentText(), QStringLiteral("wlp3s0"));
  choose(0);
  EXPECT_EQ(sentConfiguration().networkInterface, std::nullopt);
  EXPECT_EQ(picker_->currentText(), QString());
}

TEST_F(LinkPickerTest, ShowsTheNameInForceUnlessTheUserIsTyping) {
  agent_.configuration.networkInterface = "wlan0";
  tellAll();
  EXPECT_EQ(picker_->currentText(), QStringLiteral("wlan0"));
  type("eth");
  agent_.links.push_back({"eth0", true, true, true});
  tellAll();
  EXPECT_EQ(picker_->currentText(), QStringLiteral("eth"));
  EXPECT_EQ(picker_->count(), 4);
}

TEST_F(LinkPickerTest, SaysThatANameDoesNotExistOnlyWhenTheLinksAreKnown) {
  agent_.configuration.networkInterface = "ppp0";
  agent_.links.clear();
  tellAll();
  EXPECT_EQ(missing(), QString());
  agent_.links = {{"lo", false, true, false}};
  tell({WindowField::links});
  EXPECT_EQ(missing(), QStringLiteral("⚠ “ppp0” não existe nesta máquina."));
  agent_.links.push_back({"ppp0", false, true, true});
  tell({WindowField::links});
  EXPECT_EQ(missing(), QString());
}

}  // namespace
}  // namespace vantora
