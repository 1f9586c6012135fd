// SPDX-License-Identifier: MIT
//
// The status item in the bar, as a person uses it.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "dispatch/main_run_loop.hpp"
#include "frameworks/AppKit/application.hpp"
#include "frameworks/AppKit/controls.hpp"
#include "frameworks/AppKit/graphics.hpp"
#include "frameworks/Foundation/values.hpp"
#include "platform/macos/app/appkit_status_item.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using Words = std::vector<std::string>;

class TheStatusItem : public testing::Test {
 protected:
  TheStatusItem() {
    StatusItemActions actions;
    actions.openSettings = [this](std::string_view) { done_.emplace_back("settings"); };
    actions.togglePause = [this] { done_.emplace_back("pause"); };
    actions.quit = [this] { done_.emplace_back("quit"); };
    actions.isPaused = [this] { return isPaused_; };
    item_.setActions(std::move(actions));
  }

  void show(const std::string& text) {
    StatusPresentation presentation;
    presentation.width = 40;
    presentation.image.width = 40;
    presentation.image.height = 22;
    presentation.accessibilityText = text;
    item_.show(presentation);
  }

  // Opens the menu with the right button and chooses from it; its words.
  static Words choose(const std::string& title) {
    Words words;
    const int identity = 0;
    standin::MainRunLoop::addObserver(&identity, standin::MainRunLoop::trackingMode, [&] {
      for (const standin::MenuEntry& each : standin::openMenu()) {
        words.push_back(each.title + (each.isEnabled ? "" : " (disabled)"));
      }
      if (!standin::chooseFromMenu(title)) {
        ADD_FAILURE() << title << " cannot be chosen";
        standin::chooseFromMenu("");
      }
    });
    standin::click(NSEventTypeRightMouseUp);
    standin::MainRunLoop::removeObserver(&identity, standin::MainRunLoop::trackingMode);
    return words;
  }

  static NSStatusBarButton* button() { return standin::shownItem().button; }

  bool isPaused_ = false;
  Words done_;
  test::VirtualTime time_;
  const std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  AppKitStatusItem item_{*queue_, time_};
};

TEST_F(TheStatusItem, OpensTheSettingsOnALeftClickAndOnAPressWithoutAnEvent) {
  standin::click(NSEventTypeLeftMouseUp);
  EXPECT_EQ(done_, Words{"settings"});
  [button() performClick:nil];
  EXPECT_EQ(done_, (Words{"settings", "settings"}));
}

TEST_F(TheStatusItem, OpensAMenuOnARightClickWhoseEveryEntryWorks) {
  EXPECT_EQ(choose("Configurações…"), (Words{"Configurações…", "Pausar", "Sair"}));
  EXPECT_EQ(done_, Words{"settings"});
  choose("Pausar");
  isPaused_ = true;
  EXPECT_EQ(choose("Retomar"), (Words{"Configurações…", "Retomar", "Sair"}));
  choose("Sair");
  EXPECT_EQ(done_, (Words{"settings", "pause", "pause", "quit"}));
}

TEST_F(TheStatusItem, HasItsMenuForOneClickAlone) {
  choose("");
  ASSERT_EQ(standin::shownItem().menu, nil);
  standin::click(NSEventTypeLeftMouseUp);
  EXPECT_EQ(done_, Words{"settings"});
}

TEST_F(TheStatusItem, IsSixPointsLongerThanItsTemplateImage) {
  show("a");
  EXPECT_EQ(standin::shownItem().length, 46);
  EXPECT_TRUE(standin::isTemplate(button().image));
  EXPECT_EQ(button().imagePosition, NSImageOnly);
}

TEST_F(TheStatusItem, LeavesItsToolTipAloneForTenSecondsAndThenSaysTheLatest) {
  show("a");
  for (const char* text : {"b", "c", "d"}) {
    time_.advance(Seconds{2});
    show(text);
  }
  EXPECT_EQ(button().standInToolTipChanges, 1);
  EXPECT_EQ(standin::textOf(button().toolTip), "a");
  EXPECT_EQ(standin::textOf(button().standInLabel), "d");
  time_.advance(Seconds{4});
  EXPECT_EQ(button().standInToolTipChanges, 2);
  EXPECT_EQ(standin::textOf(button().toolTip), "d");
}

TEST_F(TheStatusItem, SetsNoToolTipAnewWhoseTextStaysOrComesBack) {
  show("a");
  time_.advance(Seconds{60});
  show("a");
  EXPECT_EQ(button().standInToolTipChanges, 1);
  show("b");
  time_.advance(Seconds{1});
  show("c");
  show("b");
  time_.advance(Seconds{60});
  EXPECT_EQ(button().standInToolTipChanges, 2);
}

TEST(TheStatusBar, HasTheItemAsLongAsTheObjectLives) {
  test::VirtualTime time;
  const auto queue = time.makeQueue();
  {
    const AppKitStatusItem item(*queue, time);
    EXPECT_EQ(standin::statusItems(), 1);
    EXPECT_EQ(item.thickness(), 24);
  }
  EXPECT_EQ(standin::statusItems(), 0);
}

}  // namespace
}  // namespace vantora
