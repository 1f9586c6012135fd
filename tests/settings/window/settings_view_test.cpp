// SPDX-License-Identifier: MIT
//
// The window itself: how it comes to the front and how it closes.
#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QKeySequence>
#include <QScreen>

#include "settings/window/window_fixture.hpp"

namespace vantora {
namespace {

constexpr const char* tokenVariable = "XDG_ACTIVATION_TOKEN";

class SettingsViewTest : public test::WindowTest {
 protected:
  ~SettingsViewTest() override { qunsetenv(tokenVariable); }
};

TEST_F(SettingsViewTest, ComesToTheFrontAndKeepsNoTokenForLater) {
  view_->showMinimized();
  ASSERT_TRUE(model_->receive(SettingsProtocol::raiseLine("token-7")));
  EXPECT_FALSE(view_->isMinimized());
  EXPECT_TRUE(view_->isVisible());
  EXPECT_FALSE(qEnvironmentVariableIsSet(tokenVariable));
  ASSERT_TRUE(model_->receive(SettingsProtocol::raiseLine("")));
  EXPECT_FALSE(qEnvironmentVariableIsSet(tokenVariable));
}

TEST_F(SettingsViewTest, KeepsTheTokenUntilItHasSomethingToShow) {
  WindowModel model([](std::string_view) {}, panels_);
  const SettingsView view(model);
  ASSERT_TRUE(model.receive(SettingsProtocol::raiseLine("token-7")));
  EXPECT_FALSE(view.isVisible());
  EXPECT_EQ(qgetenv(tokenVariable), "token-7");
}

TEST_F(SettingsViewTest, ClosesWithTheKeysThatTheDesktopClosesWindowsWith) {
  int places = 0;
  view_->onPlaceChange = [&] { ++places; };
  const QKeyCombination keys = QKeySequence(QKeySequence::Close)[0];
  view_->activateWindow();
  QTest::keyClick(&*view_, keys.key(), keys.keyboardModifiers());
  EXPECT_FALSE(view_->isVisible());
  EXPECT_EQ(places, 1);
}

TEST_F(SettingsViewTest, ReportsAChangeOfTab) {
  int places = 0;
  view_->onPlaceChange = [&] { ++places; };
  view_->setCurrentTab(3);
  EXPECT_EQ(places, 1);
  EXPECT_EQ(view_->currentTab(), 3);
}

TEST_F(SettingsViewTest, AsksForPicturesOfItsScreensScale) {
  EXPECT_EQ(view_->devicePixelRatioF(), 1);
  model_->setScale(3);  // As if it had been on another screen.
  (void)sent();
  view_->repaint();
  const auto ready = sentOne<SettingsProtocol::Ready>();
  ASSERT_TRUE(ready);
  EXPECT_EQ(ready->scale, 1);
}

TEST_F(SettingsViewTest, FitsIntoASmallScreenAndIsNeverLargerThanIt) {
  EXPECT_LE(view_->minimumSizeHint().width(), 300);
  EXPECT_LE(view_->minimumSizeHint().height(), 200);
  const QSize screen = QGuiApplication::primaryScreen()->availableSize();
  EXPECT_LE(view_->height(), screen.height());
  EXPECT_LE(view_->width(), screen.width());
}

}  // namespace
}  // namespace vantora
