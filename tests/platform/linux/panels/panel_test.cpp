// SPDX-License-Identifier: MIT
#include "platform/linux/panels/panel.hpp"

#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <fstream>
#include <string>

namespace vantora {
namespace {

std::string_view nameOf(std::string_view processName) {
  return panelOf(processName).name;
}

// What the kernel calls a thread that is given this name: it cuts it to 15 bytes.
std::string kernelName(const std::string& name) {
  std::ofstream("/proc/thread-self/comm") << name;
  std::string kept;
  std::getline(std::ifstream("/proc/thread-self/comm"), kept);
  return kept;
}

class Panels : public testing::Test {
 protected:
  ~Panels() override { pthread_setname_np(pthread_self(), name_.c_str()); }

 private:
  std::string name_ = [] {
    char name[16] = "";
    pthread_getname_np(pthread_self(), name, sizeof name);
    return std::string(name);
  }();
};

TEST_F(Panels, AreKnownByTheNameThatTheKernelKeepsOfEachProgram) {
  for (const Panel& panel : knownPanels()) {
    for (const std::string_view program : panel.programs) {
      for (const char* number : {"1", "6", "12", "123"}) {
        std::string name(program);
        if (const std::size_t place = name.find('#'); place != std::string::npos) {
          name.replace(place, 1, number);
        }
        if (!name.empty()) {
          EXPECT_EQ(nameOf(kernelName(name)), panel.name) << kernelName(name);
        }
      }
    }
  }
}

TEST_F(Panels, AreKnownThoughTheKernelCutsTheirName) {
  EXPECT_EQ(kernelName("panel-12-systray"), "panel-12-systra");
  EXPECT_EQ(nameOf("panel-12-systra\n"), "Xfce");
  EXPECT_EQ(nameOf("panel-123-systr\n"), "Xfce");
  EXPECT_EQ(nameOf("notification-ar\n"), "MATE");
}

TEST_F(Panels, AreKnownWithAndWithoutALineEnd) {
  EXPECT_EQ(nameOf("waybar\n"), "waybar");
  EXPECT_EQ(nameOf("mate-panel"), "MATE");
  EXPECT_EQ(nameOf("gnome-shell\n"), "GNOME");
  EXPECT_EQ(nameOf("kded5\n"), "Plasma");
  EXPECT_EQ(nameOf("lxqt-panel\n"), "LXQt");
}

TEST_F(Panels, AreUnknownByAnyOtherName) {
  for (const char* name : {"", "\n", "i3bar\n", "waybar-clone", "waybarwaybarway", "way",
                           "notification", "panel-6-clock", "panel-12-clockp", "panel--systray",
                           "panel-6-systra", "panel-x-systray"}) {
    EXPECT_EQ(&panelOf(name), &unknownPanel()) << name;
  }
}

TEST_F(Panels, GetTheWholePictureOnlyWhereTheyKeepItWide) {
  EXPECT_EQ(panelOf("waybar").form, PictureForm::wide);
  EXPECT_EQ(panelOf("mate-panel").form, PictureForm::wide);
  EXPECT_EQ(panelOf("gnome-shell").form, PictureForm::label);
  EXPECT_EQ(panelOf("xfce4-panel").form, PictureForm::square);
  EXPECT_EQ(panelOf("plasmashell").form, PictureForm::square);
  EXPECT_EQ(panelOf("lxqt-panel").form, PictureForm::square);
  EXPECT_EQ(unknownPanel().form, PictureForm::square);
}

TEST_F(Panels, GetEachScaleButWhereTheyDrawTheLargestAlone) {
  for (const Panel& panel : knownPanels()) {
    EXPECT_EQ(panel.drawsLargest, panel.name == "waybar") << panel.name;
  }
}

TEST_F(Panels, GetASquareInAColumnInPlaceOfTheWholePictureAlone) {
  for (const Panel& panel : knownPanels()) {
    EXPECT_EQ(formOn(panel, false), panel.form) << panel.name;
  }
  EXPECT_EQ(formOn(panelOf("mate-panel"), true), PictureForm::square);
  EXPECT_EQ(formOn(panelOf("gnome-shell"), true), PictureForm::label);
  EXPECT_EQ(formOn(unknownPanel(), true), PictureForm::square);
}

TEST_F(Panels, GetAnItemForEachModuleWhereTheyKeepSquaresInOrder) {
  EXPECT_EQ(panelOf("kded5").itemOrder, ItemOrder::leftmost);
  EXPECT_EQ(panelOf("lxqt-panel").itemOrder, ItemOrder::leftmost);
  EXPECT_EQ(panelOf("swaybar").itemOrder, ItemOrder::rightmost);
  EXPECT_EQ(unknownPanel().itemOrder, ItemOrder::single);
  for (const Panel& panel : knownPanels()) {
    EXPECT_TRUE(panel.itemOrder == ItemOrder::single || panel.form == PictureForm::square)
        << panel.name;
  }
}

TEST_F(Panels, GetATrayWindowWhereOnlyThatStaysWide) {
  for (const Panel& panel : knownPanels()) {
    EXPECT_EQ(panel.keepsTrayWindowWide, panel.name == "Xfce") << panel.name;
  }
  EXPECT_FALSE(unknownPanel().keepsTrayWindowWide);
}

TEST_F(Panels, GetLightInkWhereTheyAreDark) {
  for (const Panel& panel : knownPanels()) {
    EXPECT_EQ(inkFor(panel, ColorScheme::dark), Ink::light) << panel.name;
  }
  EXPECT_EQ(inkFor(unknownPanel(), ColorScheme::dark), Ink::light);
  EXPECT_EQ(inkFor(panelOf("gnome-shell"), ColorScheme::noPreference), Ink::light);
  EXPECT_EQ(inkFor(panelOf("gnome-shell"), ColorScheme::light), Ink::light);
}

TEST_F(Panels, GetAPlateWhereADarkPanelMayBeBesideLightWindows) {
  for (const Panel& panel : knownPanels()) {
    if (!panel.isAlwaysDark) {
      EXPECT_EQ(inkFor(panel, ColorScheme::noPreference), Ink::lightOnPlate) << panel.name;
      EXPECT_EQ(inkFor(panel, ColorScheme::light), Ink::lightOnPlate) << panel.name;
    }
  }
  EXPECT_EQ(inkFor(unknownPanel(), ColorScheme::light), Ink::lightOnPlate);
}

TEST_F(Panels, GetMarkupEscapedOnlyWhereTheyReadIt) {
  EXPECT_EQ(toolTipFor(panelOf("waybar"), "a<b>\n& c"), "a&lt;b&gt;\n&amp; c");
  EXPECT_EQ(toolTipFor(panelOf("mate-panel"), "a<b>\n& c"), "a<b>\n& c");
}

TEST_F(Panels, AreOfferedExactHeightsInOrderBetweenTheTwoScales) {
  for (const Panel& panel : knownPanels()) {
    EXPECT_TRUE(std::is_sorted(panel.exactHeights.begin(), panel.exactHeights.end()));
    for (const int height : panel.exactHeights) {
      EXPECT_GT(height, 22) << panel.name;
      EXPECT_LT(height, 44) << panel.name;
    }
  }
}

}  // namespace
}  // namespace vantora
