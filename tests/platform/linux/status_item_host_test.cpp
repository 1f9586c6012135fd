// SPDX-License-Identifier: MIT
#include "platform/linux/status_item_host.hpp"

#include <gtest/gtest.h>

#include "platform/linux/bus_address.hpp"

namespace vantora {
namespace {

TEST(StatusItemHost, IsKnownByTheNameOfTheWatchersProcess) {
  EXPECT_EQ(statusItemHost("waybar\n"), StatusItemHost::waybar);
  EXPECT_EQ(statusItemHost("notification-ar\n"), StatusItemHost::mate);
  EXPECT_EQ(statusItemHost("mate-panel"), StatusItemHost::mate);
  EXPECT_EQ(statusItemHost("gnome-shell\n"), StatusItemHost::gnome);
  EXPECT_EQ(statusItemHost("panel-6-systray\n"), StatusItemHost::xfce);
  EXPECT_EQ(statusItemHost("panel-12-systray\n"), StatusItemHost::xfce);
  EXPECT_EQ(statusItemHost("kded5\n"), StatusItemHost::plasma);
  EXPECT_EQ(statusItemHost("lxqt-panel\n"), StatusItemHost::lxqt);
}

TEST(StatusItemHost, IsOtherForWhateverIsNotKnown) {
  EXPECT_EQ(statusItemHost(""), StatusItemHost::other);
  EXPECT_EQ(statusItemHost("\n"), StatusItemHost::other);
  EXPECT_EQ(statusItemHost("swaybar\n"), StatusItemHost::other);
  EXPECT_EQ(statusItemHost("waybar-clone"), StatusItemHost::other);
  EXPECT_EQ(statusItemHost("panel-6-clock"), StatusItemHost::other);
}

TEST(StatusItemHost, GetsTheWholePictureOnlyWhereThePanelKeepsItWide) {
  EXPECT_EQ(pictureForm(StatusItemHost::waybar), PictureForm::wide);
  EXPECT_EQ(pictureForm(StatusItemHost::mate), PictureForm::wide);
  EXPECT_EQ(pictureForm(StatusItemHost::gnome), PictureForm::label);
  EXPECT_EQ(pictureForm(StatusItemHost::xfce), PictureForm::square);
  EXPECT_EQ(pictureForm(StatusItemHost::plasma), PictureForm::square);
  EXPECT_EQ(pictureForm(StatusItemHost::lxqt), PictureForm::square);
  EXPECT_EQ(pictureForm(StatusItemHost::other), PictureForm::square);
}

TEST(StatusItemHost, GetsATrayWindowWhereOnlyThatStaysWide) {
  EXPECT_TRUE(keepsTrayWindowWide(StatusItemHost::xfce));
  for (const auto host : {StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::gnome,
                          StatusItemHost::plasma, StatusItemHost::lxqt, StatusItemHost::other}) {
    EXPECT_FALSE(keepsTrayWindowWide(host));
  }
}

TEST(StatusItemHost, GetsLightInkWhereThePanelIsDark) {
  for (const auto host : {StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::xfce,
                          StatusItemHost::plasma, StatusItemHost::lxqt, StatusItemHost::other}) {
    EXPECT_EQ(statusItemInk(host, ColorScheme::dark), Ink::light);
  }
  EXPECT_EQ(statusItemInk(StatusItemHost::gnome, ColorScheme::noPreference), Ink::light);
  EXPECT_EQ(statusItemInk(StatusItemHost::gnome, ColorScheme::light), Ink::light);
}

TEST(StatusItemHost, GetsAPlateWhereADarkPanelMayStandBesideLightWindows) {
  for (const auto host : {StatusItemHost::waybar, StatusItemHost::mate, StatusItemHost::xfce,
                          StatusItemHost::plasma, StatusItemHost::lxqt, StatusItemHost::other}) {
    EXPECT_EQ(statusItemInk(host, ColorScheme::noPreference), Ink::lightOnPlate);
    EXPECT_EQ(statusItemInk(host, ColorScheme::light), Ink::lightOnPlate);
  }
}

TEST(StatusItemHost, GetsALineOfToolTipForEachSentence) {
  EXPECT_EQ(toolTipTitle(StatusItemHost::plasma, "CPU: 12%; Rede: 0,5M. Bateria: —"),
            "CPU: 12%; Rede: 0,5M\nBateria: —");
  EXPECT_EQ(toolTipTitle(StatusItemHost::plasma, "Fim."), "Fim.");
  EXPECT_EQ(toolTipTitle(StatusItemHost::plasma, ""), "");
}

TEST(StatusItemHost, GetsMarkupEscapedOnlyWhereItIsTakenForMarkup) {
  EXPECT_EQ(toolTipTitle(StatusItemHost::waybar, "a<b> & c"), "a&lt;b&gt; &amp; c");
  EXPECT_EQ(toolTipTitle(StatusItemHost::mate, "a<b> & c"), "a<b> & c");
}

TEST(StatusItemSituation, IsToldInOneLine) {
  for (const auto situation :
       {StatusItemSituation::shown, StatusItemSituation::noHost, StatusItemSituation::noBus}) {
    EXPECT_FALSE(describe(situation).empty());
    EXPECT_EQ(describe(situation).find('\n'), std::string_view::npos);
  }
}

TEST(BusAddress, IsTheEnvironmentsAddress) {
  EXPECT_EQ(sessionBusAddress("unix:path=/a", "/run/user/1000"), "unix:path=/a");
}

TEST(BusAddress, IsTheRuntimeDirectorysSocketWithoutOne) {
  EXPECT_EQ(sessionBusAddress(nullptr, "/run/user/1000"), "unix:path=/run/user/1000/bus");
  EXPECT_EQ(sessionBusAddress("", "/run/user/1000"), "unix:path=/run/user/1000/bus");
}

TEST(BusAddress, EscapesWhatAnAddressMayNotHold) {
  EXPECT_EQ(sessionBusAddress(nullptr, "/tmp/a b,c;d"), "unix:path=/tmp/a%20b%2cc%3bd/bus");
}

TEST(BusAddress, IsEmptyWhereNothingTells) {
  EXPECT_EQ(sessionBusAddress(nullptr, nullptr), "");
  EXPECT_EQ(sessionBusAddress("", ""), "");
  EXPECT_EQ(sessionBusAddress(nullptr, "relative"), "");
}

TEST(BusAddress, NamesTheSocketOfTheFirstBus) {
  EXPECT_EQ(socketPath("unix:path=/run/user/1000/bus"), "/run/user/1000/bus");
  EXPECT_EQ(socketPath("unix:path=/tmp/a%20b%2Cc,guid=1;unix:path=/other"), "/tmp/a b,c");
  EXPECT_EQ(socketPath("unix:guid=1,path=/tmp/bus"), "/tmp/bus");
  EXPECT_EQ(socketPath("unix:path=/tmp/100%"), "/tmp/100%");
  EXPECT_EQ(socketPath("unix:path=/tmp/%zz"), "/tmp/%zz");
  for (const char* address : {"", "unix:", "unix:abstract=/tmp/bus", "tcp:host=a,path=/b", ";"}) {
    EXPECT_EQ(socketPath(address), "") << address;
  }
}

}  // namespace
}  // namespace vantora
