// SPDX-License-Identifier: MIT
#include "settings/window/desktop_dialogs.hpp"

#include <gtest/gtest.h>

#include <QByteArray>

namespace vantora {
namespace {

constexpr const char* themeVariable = "QT_QPA_PLATFORMTHEME";

class DesktopDialogsTest : public testing::Test {
 protected:
  ~DesktopDialogsTest() override { qunsetenv(themeVariable); }
};

TEST_F(DesktopDialogsTest, AreThoseOfTheDesktopsPortal) {
  qunsetenv(themeVariable);
  useDesktopDialogs();
  EXPECT_EQ(qgetenv(themeVariable), "xdgdesktopportal");
}

TEST_F(DesktopDialogsTest, AreThoseOfTheThemeThatTheUserChose) {
  qputenv(themeVariable, "qt6ct");
  useDesktopDialogs();
  EXPECT_EQ(qgetenv(themeVariable), "qt6ct");
}

}  // namespace
}  // namespace vantora
