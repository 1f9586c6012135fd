// SPDX-License-Identifier: MIT
//
// The item between a panel on the bus and a tray on the display: where it is, what it
// shows there, and what clicks do.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/linux/status_item/block_text_engine.hpp"
#include "platform/linux/status_item/example_presentation.hpp"
#include "platform/linux/status_item/linux_status_item.hpp"
#include "platform/linux/status_item/scripted_panel.hpp"
#include "platform/linux/status_item/scripted_portal.hpp"
#include "platform/linux/x11_tray/loop_display_thread.hpp"
#include "platform/linux/x11_tray/private_display.hpp"
#include "platform/linux/x11_tray/scripted_tray.hpp"
#include "platform/linux/x11_tray/xembed_pixels.hpp"
#include "status/rasterise.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/virtual_time.hpp"

namespace vantora {
namespace {

using test::line;
using test::ScriptedPanel;
using test::ScriptedTray;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* xfce = "panel-6-systray";

StatusPresentation presentation() {
  return test::examplePresentation("12%");
}

class FakePopupMenu final : public PopupMenu {
 public:
  void open(const MenuContent& content, OnChosen onChosen) override {
    opened.push_back(content);
    onChosen_ = std::move(onChosen);
  }
  void close() override {
    ++closings;
    onChosen_ = nullptr;
  }
  void choose(std::int32_t id) { std::exchange(onChosen_, nullptr)(id); }

  std::vector<MenuContent> opened;
  int closings = 0;

 private:
  OnChosen onChosen_;
};

class FakeToolTip final : public ToolTip {
 public:
  void show(const ToolTipContent& content) override { shown.push_back(content); }
  void hide() override { ++hidings; }

  std::vector<ToolTipContent> shown;
  int hidings = 0;
};

// A display that answers nothing.
class SilentDisplayThread final : public DisplayThread {
 public:
  void post(Task /*task*/) override {}
};

class StatusItemTrayTest : public testing::Test {
 protected:
  void SetUp() override {
    if (display_.name().empty()) {
      GTEST_SKIP() << "Xvfb is not installed";
    }
    panelConnection_.open();
  }

  void startPanel(const std::string& name, ScriptedPanel::Script script = {}) {
    const std::string directory = processRoot() + "/" + std::to_string(::getpid());
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/comm") << name << '\n';
    panel_ = std::make_unique<ScriptedPanel>(panelConnection_, script);
  }
  void startTray(ScriptedTray::Script script = {}) {
    tray_ = std::make_unique<ScriptedTray>(display_.name(), script);
  }
  void startItem() { startItem(thread_); }
  void startItem(DisplayThread& thread) {
    LinuxStatusItem::Options options;
    options.processRoot = processRoot();
    options.onDecision = [this](const std::string& line) { decisions_.push_back(line); };
    item_ = std::make_unique<LinuxStatusItem>(
        itemConnection_, *queue_, engine_, options,
        [this](StatusItemSituation situation) { situations_.push_back(situation); });
    item_->useTray(thread, display_.name(), {menu_, toolTip_});
    item_->setActions(
        {.openSettings =
             [this](std::string_view token) { did_.push_back("open:" + std::string(token)); },
         .togglePause =
             [this] {
               isPaused_ = !isPaused_;
               did_.emplace_back("pause");
             },
         .quit = [this] { did_.emplace_back("quit"); },
         .isPaused = [this] { return isPaused_; }});
    item_->show(presentation());
    itemConnection_.open();
  }
  bool until(const std::function<bool()>& isDone) {
    return test::runUntil(loop_, [&] {
      if (tray_ != nullptr) {
        tray_->handleEvents();
      }
      time_.runPosted();
      return isDone();
    });
  }
  bool untilDocked() {
    return until([this] { return tray_->isThere() && tray_->isMapped(); });
  }
  bool untilUndocked() {
    return until([this] { return !tray_->isThere(); });
  }
  // The panel has been seen, and one timer is left.
  bool untilWaitingForTheTray() {
    return until([this] { return !situations_.empty() && time_.pendingCount() == 1; });
  }
  bool untilRegistered(std::size_t count = 1) {
    return until([this, count] { return panel_->items().size() == count; });
  }
  // Width and height of the first that the panel is given.
  std::pair<int, int> firstPicture() {
    panel_->properties.reset();
    panel_->ask();
    if (!until([this] { return panel_->properties && !panel_->properties->pixmaps.empty(); })) {
      return {0, 0};
    }
    return {panel_->properties->pixmaps[0].width, panel_->properties->pixmaps[0].height};
  }
  // Lets the tray's half second go by with everything that was sent before and after it.
  void settle() {
    sync();
    time_.advance(Seconds{0.5});
    sync();
  }
  void sync() {
    for (int turn = 0; turn < 8; ++turn) {
      (void)tray_->size();
      uv_run(&loop_.raw(), UV_RUN_NOWAIT);
      tray_->handleEvents();
      time_.runPosted();
    }
  }
  void startInTray() {
    startTray();
    startPanel(xfce);
    startItem();
    ASSERT_TRUE(untilDocked());
    settle();
  }
  void click(int button, std::uint32_t time = 4321) {
    tray_->press(button, 10, 8);
    tray_->release(button, 10, 8, time);
  }
  bool untilMenu(std::size_t count) {
    return until([this, count] { return menu_.opened.size() == count; });
  }
  bool untilDid(const std::vector<std::string>& what) {
    return until([&] { return did_ == what; });
  }
  std::string processRoot() const { return bus_.directory() + "/proc"; }

  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  test::PrivateBus bus_;
  test::PrivateDisplay display_;
  UvLoop loop_;
  test::LoopDisplayThread thread_{loop_};
  SilentDisplayThread silentThread_;
  test::BlockTextEngine engine_;
  FakePopupMenu menu_;
  FakeToolTip toolTip_;
  std::vector<StatusItemSituation> situations_;
  std::vector<std::string> did_;
  std::vector<std::string> decisions_;
  bool isPaused_ = false;
  BusConnection panelConnection_{loop_.raw(), *queue_, bus_.address()};
  BusConnection portalConnection_{loop_.raw(), *queue_, bus_.address()};
  BusConnection itemConnection_{loop_.raw(), *queue_, bus_.address()};
  std::unique_ptr<test::ScriptedPortal> portal_;
  std::unique_ptr<ScriptedTray> tray_;
  std::unique_ptr<ScriptedPanel> panel_;
  std::unique_ptr<LinuxStatusItem> item_;
};

TEST_F(StatusItemTrayTest, DocksWhereThePanelKeepsAWindowWide) {
  startInTray();
  EXPECT_THAT(panel_->items(), IsEmpty()) << "not twice in one panel";
  EXPECT_THAT(situations_, ElementsAre(StatusItemSituation::shown));
  EXPECT_EQ(tray_->size(), std::pair(66, 24)) << "three points on either side of the picture";
  StatusImage image = presentation().image;
  image.width = 66;
  image.height = 24;
  for (PlacedText& text : image.texts) {
    text.x += 3;
    text.y += 1;
  }
  const AlphaBitmap expected = rasterise(image, engine_, 1);
  EXPECT_TRUE(until(
      [&] { return tray_->pixels() == xPixels(expected, Ink::lightOnPlate, TrayDepth::opaque); }));
}

TEST_F(StatusItemTrayTest, StaysOnTheBusWhereThePanelShowsItWide) {
  startTray();
  startPanel("waybar");
  startItem();
  ASSERT_TRUE(untilRegistered());
  time_.advance(Seconds{600});
  EXPECT_THAT(tray_->requests(), IsEmpty());
}

TEST_F(StatusItemTrayTest, IsASquareInAVerticalPanelWhoseTraySaysSo) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  EXPECT_EQ(panel_->signals().back(), "NewIcon");
  EXPECT_EQ(firstPicture(), std::pair(16, 16));
  tray_->turn(false);
  panel_->forgetSignals();
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  EXPECT_EQ(firstPicture(), std::pair(66, 22));
  EXPECT_THAT(tray_->requests(), IsEmpty());
}

TEST_F(StatusItemTrayTest, ExplainsWhereItIsShownAndInWhichForm) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  const std::string square = "quadrado com um módulo, porque o painel é vertical";
  ASSERT_TRUE(until([&] { return !decisions_.empty() && decisions_.back().ends_with(square); }));
  EXPECT_EQ(decisions_.back(), "painel: MATE; forma: " + square);
  tray_->turn(false);
  ASSERT_TRUE(until([&] { return decisions_.back() == "painel: MATE; forma: imagem inteira"; }));
  panel_.reset();
  ASSERT_TRUE(until([&] { return decisions_.back() == "painel: nenhum"; }));
  startPanel(xfce);
  ASSERT_TRUE(until([&] {
    return decisions_.back().starts_with("painel: bandeja do X11; forma: o que couber");
  }));
  ASSERT_TRUE(untilDocked());
  settle();
  ASSERT_TRUE(until([&] {
    return decisions_.back().starts_with("painel: bandeja do X11; forma: imagem inteira");
  }));
}

TEST_F(StatusItemTrayTest, ReportsTheScaleAndTheInkThatTheTrayGets) {
  startInTray();
  ASSERT_TRUE(until([this] { return item_->report().form == "imagem inteira"; }));
  const StatusItemReport report = item_->report();
  EXPECT_EQ(report.panel, "Xfce, bandeja do X11");
  EXPECT_EQ(report.program, xfce);
  EXPECT_EQ(report.scale, "1 pixel por ponto");
  EXPECT_EQ(report.ink, "clara, sobre uma placa escura");
}

TEST_F(StatusItemTrayTest, ReportsThatASquareIsForTheColumnOfAVerticalPanel) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  ASSERT_TRUE(until([this] { return item_->report().form == "quadrado com um módulo"; }));
  EXPECT_EQ(item_->report().formWhy, "o painel é vertical: não há largura para a imagem");
}

TEST_F(StatusItemTrayTest, ForgetsTheOrientationWithThePanelThatHadIt) {
  startTray({.isVertical = true});
  startPanel("mate-panel");
  startItem();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return !panel_->signals().empty(); }));
  panel_.reset();
  startPanel("waybar");
  ASSERT_TRUE(untilRegistered());
  EXPECT_EQ(firstPicture(), std::pair(66, 22));
}

TEST_F(StatusItemTrayTest, GoesBackToTheBusWhereTheTraySqueezesIt) {
  startTray({.widest = 24});
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilDocked());
  EXPECT_THAT(panel_->items(), IsEmpty());
  settle();
  EXPECT_TRUE(untilUndocked());
  EXPECT_TRUE(untilRegistered());
  // And does not try that panel again.
  item_->show(presentation());
  time_.advance(Seconds{600});
  EXPECT_EQ(tray_->requests().size(), 1U);
}

TEST_F(StatusItemTrayTest, GoesBackToTheBusWhenTheTrayIsSqueezedLater) {
  startInTray();
  tray_->setWidest(30);
  settle();
  EXPECT_TRUE(untilUndocked());
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusItemTrayTest, TriesThePanelThatComesAfterTheOneThatSqueezedIt) {
  startTray({.widest = 24});
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilDocked());
  settle();
  ASSERT_TRUE(untilRegistered());
  panel_.reset();
  tray_.reset();
  startTray();
  startPanel(xfce);
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_THAT(panel_->items(), IsEmpty());
  EXPECT_EQ(tray_->size(), std::pair(66, 24));
}

TEST_F(StatusItemTrayTest, WaitsForTheTrayOfAPanelThatStarts) {
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilWaitingForTheTray());
  time_.advance(Seconds{1.999});
  startTray();
  ASSERT_TRUE(untilDocked());
  settle();
  time_.advance(Seconds{600});
  EXPECT_THAT(panel_->items(), IsEmpty()) << "the item did not come and go";
}

TEST_F(StatusItemTrayTest, RegistersWithAPanelThatBringsNoTray) {
  startPanel(xfce);
  startItem();
  ASSERT_TRUE(untilWaitingForTheTray());
  time_.advance(Seconds{1.999});
  EXPECT_THAT(panel_->items(), IsEmpty());
  time_.advance(Seconds{0.001});
  ASSERT_TRUE(untilRegistered());
  // A tray that comes after all is taken all the same.
  startTray();
  ASSERT_TRUE(untilDocked());
  EXPECT_EQ(situations_, std::vector{StatusItemSituation::shown});
}

TEST_F(StatusItemTrayTest, DocksAfterTheTimeoutWhereNoHostTakesItOnTheBus) {
  startTray();
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{4.999});
  EXPECT_THAT(tray_->requests(), IsEmpty());
  time_.advance(Seconds{0.001});
  ASSERT_TRUE(untilDocked());
  ASSERT_TRUE(until([this] { return !situations_.empty(); }));
  EXPECT_EQ(situations_.back(), StatusItemSituation::shown);
}

TEST_F(StatusItemTrayTest, StaysInTheTrayBesideAWatcherThatShowsNothing) {
  startTray({.widest = 24});
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  ASSERT_TRUE(untilDocked());
  settle();
  startPanel("watcher", {.hasHost = false});
  ASSERT_TRUE(until([this] { return panel_->hasAnsweredForHost(); }));
  settle();
  EXPECT_TRUE(tray_->isThere());
  EXPECT_THAT(panel_->items(), IsEmpty());
  panel_.reset();
  settle();
  time_.advance(Seconds{600});
  settle();
  EXPECT_TRUE(tray_->isThere());
  EXPECT_EQ(tray_->requests().size(), 1U);
  EXPECT_EQ(situations_.back(), StatusItemSituation::shown);
  startPanel("waybar");
  EXPECT_TRUE(untilUndocked());
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusItemTrayTest, DocksBesideAWatcherThatHasLostItsHost) {
  startTray();
  startPanel("watcher");
  startItem();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(until([this] { return !situations_.empty(); }));
  panel_->setHasHost(false);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_EQ(situations_, std::vector{StatusItemSituation::shown});
}

TEST_F(StatusItemTrayTest, RegistersWithThePanelWhereTheDisplayIsSilent) {
  startPanel(xfce);
  startItem(silentThread_);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 2; }));
  time_.advance(Seconds{1.999});
  EXPECT_THAT(panel_->items(), IsEmpty());
  time_.advance(Seconds{0.001});
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusItemTrayTest, SaysThatThereIsNoPanelWhereTheDisplayIsSilent) {
  startItem(silentThread_);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  EXPECT_THAT(situations_, IsEmpty());
  time_.advance(XEmbedWindow::answerTimeout);
  EXPECT_THAT(situations_, ElementsAre(StatusItemSituation::noHost));
}

TEST_F(StatusItemTrayTest, ShowsItsFirstModuleInANarrowTrayThatIsAllThereIs) {
  startTray({.widest = 24});
  startItem();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{5});
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_TRUE(tray_->isThere());
  const StatusImage square = squareImage({line("12%"), line("48")}, 24, engine_);
  const AlphaBitmap expected = rasterise(square, engine_, 1);
  EXPECT_TRUE(until(
      [&] { return tray_->pixels() == xPixels(expected, Ink::lightOnPlate, TrayDepth::opaque); }));
}

TEST_F(StatusItemTrayTest, DocksAgainWithAPanelThatRestarts) {
  startInTray();
  panel_.reset();
  tray_.reset();
  time_.advance(Seconds{2});
  startTray();
  startPanel(xfce);
  ASSERT_TRUE(untilDocked());
  settle();
  EXPECT_THAT(panel_->items(), IsEmpty());
}

TEST_F(StatusItemTrayTest, OpensTheSettingsWithTheTimeOfTheClick) {
  startInTray();
  click(1, 777);
  EXPECT_TRUE(untilDid({"open:vantora_TIME777"}));
  click(2, 888);
  EXPECT_TRUE(untilDid({"open:vantora_TIME777", "open:vantora_TIME888"}));
  EXPECT_THAT(menu_.opened, IsEmpty());
  EXPECT_EQ(menu_.closings, 2) << "a menu that is open goes";
}

TEST_F(StatusItemTrayTest, OpensTheSameMenuAsOnTheBus) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  const MenuContent& content = menu_.opened.front();
  EXPECT_THAT(content.entries, ElementsAre(MenuEntry{1, "Configurações…"}, MenuEntry{2, "Pausar"},
                                           MenuEntry{3, "Sair"}));
  const auto [x, y] = tray_->place();
  EXPECT_EQ(content.item, (ScreenArea{x, y, 66, 24}));
  EXPECT_EQ(content.pointer, (ScreenPoint{x + 10, y + 8}));
  EXPECT_FALSE(content.isDark);
  EXPECT_THAT(did_, IsEmpty());
}

TEST_F(StatusItemTrayTest, DoesWhatIsChosen) {
  startInTray();
  click(3, 999);
  ASSERT_TRUE(untilMenu(1));
  menu_.choose(1);
  EXPECT_TRUE(untilDid({"open:vantora_TIME999"}));
  click(3);
  ASSERT_TRUE(untilMenu(2));
  menu_.choose(2);
  EXPECT_TRUE(untilDid({"open:vantora_TIME999", "pause"}));
  click(3);
  ASSERT_TRUE(untilMenu(3));
  EXPECT_EQ(menu_.opened.back().entries[1].label, "Retomar");
  menu_.choose(3);
  EXPECT_TRUE(untilDid({"open:vantora_TIME999", "pause", "quit"}));
}

TEST_F(StatusItemTrayTest, DoesNotPauseTwice) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  isPaused_ = true;  // by the settings window, while the menu says "Pausar"
  menu_.choose(2);
  time_.runPosted();
  EXPECT_THAT(did_, IsEmpty());
}

TEST_F(StatusItemTrayTest, IgnoresAnEntryThatTheMenuDoesNotHave) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  menu_.choose(42);
  time_.runPosted();
  EXPECT_THAT(did_, IsEmpty());
}

TEST_F(StatusItemTrayTest, OpensADarkMenuOnADarkDesktop) {
  portalConnection_.open();
  portal_ = std::make_unique<test::ScriptedPortal>(portalConnection_, 1);
  startInTray();
  ASSERT_TRUE(until([this] {
    click(3);
    return !menu_.opened.empty() && menu_.opened.back().isDark;
  }));
}

TEST_F(StatusItemTrayTest, ShowsTheReadingsWhereThePointerRests) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{0.499});
  EXPECT_THAT(toolTip_.shown, IsEmpty());
  time_.advance(Seconds{0.001});
  const auto [x, y] = tray_->place();
  EXPECT_THAT(toolTip_.shown,
              ElementsAre(ToolTipContent{"CPU: 12%\nRede: 0,1M", {x + 10, y + 8}, false}));
  const int before = toolTip_.hidings;
  tray_->leave();
  EXPECT_TRUE(until([&] { return toolTip_.hidings == before + 1; }));
}

TEST_F(StatusItemTrayTest, ShowsNoToolTipToAPointerThatPassesBy) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  tray_->leave();
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 0; }));
  time_.advance(Seconds{60});
  EXPECT_THAT(toolTip_.shown, IsEmpty());
}

TEST_F(StatusItemTrayTest, ShowsNoToolTipOverItsMenu) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  const int before = toolTip_.hidings;
  click(3);
  ASSERT_TRUE(untilMenu(1));
  EXPECT_EQ(toolTip_.hidings, before + 1);
  time_.advance(Seconds{60});
  EXPECT_THAT(toolTip_.shown, IsEmpty());
  tray_->leave(XCB_NOTIFY_MODE_GRAB);
  settle();
  EXPECT_EQ(menu_.closings, 0) << "the menu stays";
}

TEST_F(StatusItemTrayTest, TakesItsToolTipAwayWithTheTray) {
  startInTray();
  tray_->enter(10, 8);
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{0.5});
  ASSERT_EQ(toolTip_.shown.size(), 1U);
  const int before = toolTip_.hidings;
  tray_.reset();
  EXPECT_TRUE(until([&] { return toolTip_.hidings > before; }));
}

TEST_F(StatusItemTrayTest, TakesMenuAndToolTipWithIt) {
  startInTray();
  click(3);
  ASSERT_TRUE(untilMenu(1));
  const int before = toolTip_.hidings;
  item_.reset();
  EXPECT_EQ(menu_.closings, 1);
  EXPECT_EQ(toolTip_.hidings, before + 1);
  EXPECT_TRUE(until([this] { return !tray_->isThere(); }));
}

}  // namespace
}  // namespace vantora
