// SPDX-License-Identifier: MIT
//
// Registering with watchers on a bus of the test's own.
#include "platform/linux/status_item/status_notifier_watcher.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/status_item/scripted_panel.hpp"
#include "platform/linux/status_item/waybar_file.hpp"
#include "support/linux/bus_call.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"
#include "support/virtual_time.hpp"
#include "support/virtual_worker.hpp"

namespace vantora {
namespace {

using test::ScriptedPanel;
using testing::IsEmpty;
using State = StatusNotifierWatcher::State;

class StatusNotifierWatcherTest : public testing::Test {
 protected:
  void startPanel(const std::string& name, ScriptedPanel::Script script = {}) {
    const std::string directory = processRoot() + "/" + std::to_string(::getpid());
    std::filesystem::create_directories(directory);
    std::ofstream(directory + "/comm") << name << '\n';
    panelConnection_.open();
    panel_ = std::make_unique<ScriptedPanel>(panelConnection_, script);
  }
  void startWatcher() {
    watcher_ = std::make_unique<StatusNotifierWatcher>(
        connection_, *queue_, StatusNotifierWatcher::Processes{processRoot(), files_},
        [this](const State& state) { states_.push_back(state); });
    connection_.open();
  }
  bool until(const std::function<bool()>& isDone) { return test::runUntil(loop_, isDone); }
  bool untilRegistered(std::size_t count = 1) {
    return until([this, count] { return panel_->items().size() == count; });
  }
  bool untilHost(bool hasHost = true) {
    return until([this, hasHost] { return !states_.empty() && states_.back().hasHost == hasHost; });
  }
  // What the panel has sent has arrived, and the other way round.
  void sync() {
    for (BusConnection* from : {&panelConnection_, &connection_}) {
      BusConnection& to = from == &connection_ ? panelConnection_ : connection_;
      const char* name = "";
      sd_bus_get_unique_name(to.bus(), &name);
      test::callAndWait(loop_, from->bus(), {name, "/", "org.freedesktop.DBus.Peer"}, "Ping", "");
    }
  }
  [[nodiscard]] bool ownsName(const std::string& name) {
    const test::BusMessage answer =
        test::callAndWait(loop_, panelConnection_.bus(),
                          {"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus"},
                          "NameHasOwner", "s", name.c_str());
    int isOwned = 0;
    sd_bus_message_read(answer.get(), "b", &isOwned);
    return isOwned != 0;
  }
  std::string processRoot() const { return bus_.directory() + "/proc"; }
  // A panel whose configuration can be read.
  void startWaybar(std::string_view configuration) {
    startPanel("waybar");
    test::nameWaybarFile(processRoot(), configuration);
    files_ = &worker_;
  }

  test::VirtualTime time_;
  std::unique_ptr<test::VirtualQueue> queue_ = time_.makeQueue();
  test::VirtualWorker worker_{*queue_};
  Worker* files_ = nullptr;
  test::PrivateBus bus_;
  UvLoop loop_;
  std::vector<State> states_;
  BusConnection panelConnection_{loop_.raw(), *queue_, bus_.address()};
  BusConnection connection_{loop_.raw(), *queue_, bus_.address()};
  std::unique_ptr<ScriptedPanel> panel_;
  std::unique_ptr<StatusNotifierWatcher> watcher_;
};

TEST_F(StatusNotifierWatcherTest, ReportsThePanelBeforeItRegisters) {
  startPanel("lxqt-panel");
  startWatcher();
  ASSERT_TRUE(until([this] { return !states_.empty() && states_.back().isPresent; }));
  EXPECT_EQ(states_.back().panel, &panelOf("lxqt-panel"));
  EXPECT_THAT(panel_->items(), IsEmpty());
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(untilHost());
  EXPECT_EQ(panel_->items().front(),
            "org.kde.StatusNotifierItem-" + std::to_string(::getpid()) + "-1");
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(StatusNotifierWatcherTest, TakesAPanelWhoseProcessCannotBeSeenForAnother) {
  startPanel("waybar");
  std::filesystem::remove_all(processRoot());
  startWatcher();
  ASSERT_TRUE(untilHost());
  EXPECT_EQ(states_.back().panel, &unknownPanel());
}

TEST_F(StatusNotifierWatcherTest, ReadsWhetherThePanelIsVerticalAndDoesNotWaitForIt) {
  startWaybar(R"({"position": "left"})");
  worker_.hang();
  startWatcher();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(untilHost());
  EXPECT_EQ(states_.back().layout, std::nullopt);
  const std::size_t before = states_.size();
  worker_.resume();
  time_.runPosted();
  EXPECT_EQ(states_.back().layout, PanelLayout{.isVertical = true});
  EXPECT_EQ(states_.size(), before + 1);
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(StatusNotifierWatcherTest, SaysThatAPanelIsNotVertical) {
  startWaybar("{}");
  startWatcher();
  ASSERT_TRUE(untilHost());
  time_.runPosted();
  EXPECT_EQ(states_.back().layout, PanelLayout{});
}

TEST_F(StatusNotifierWatcherTest, ReadsAnewWhenThePanelComesBack) {
  startWaybar(R"({"position": "left"})");
  startWatcher();
  ASSERT_TRUE(untilHost());
  time_.runPosted();
  ASSERT_EQ(states_.back().layout, PanelLayout{.isVertical = true});
  panel_.reset();
  ASSERT_TRUE(until([this] { return !states_.back().isPresent; }));
  EXPECT_EQ(states_.back().layout, std::nullopt);
  startWaybar("{}");
  ASSERT_TRUE(untilHost());
  time_.runPosted();
  EXPECT_EQ(states_.back().layout, PanelLayout{});
}

TEST_F(StatusNotifierWatcherTest, DropsWhatItReadsOfAPanelThatHasGone) {
  startWaybar(R"({"position": "left"})");
  worker_.hang();
  startWatcher();
  ASSERT_TRUE(untilHost());
  panel_.reset();
  ASSERT_TRUE(until([this] { return !states_.back().isPresent; }));
  worker_.resume();
  time_.runPosted();
  EXPECT_EQ(states_.back().layout, std::nullopt);
}

TEST_F(StatusNotifierWatcherTest, MayEndWhileItReads) {
  startWaybar(R"({"position": "left"})");
  worker_.hang();
  startWatcher();
  ASSERT_TRUE(untilHost());
  const std::size_t before = states_.size();
  watcher_.reset();
  worker_.resume();
  time_.runPosted();
  EXPECT_EQ(states_.size(), before);
}

TEST_F(StatusNotifierWatcherTest, FollowsTheHostOfAWatcher) {
  startPanel("watcher", {.hasHost = false});
  startWatcher();
  ASSERT_TRUE(untilRegistered());
  sync();
  EXPECT_FALSE(states_.back().hasHost);
  panel_->setHasHost(true);
  ASSERT_TRUE(untilHost());
  panel_->setHasHost(false);
  ASSERT_TRUE(untilHost(false));
  EXPECT_TRUE(states_.back().isPresent);
}

TEST_F(StatusNotifierWatcherTest, ReportsThatTheWatcherIsGone) {
  startPanel("waybar");
  startWatcher();
  ASSERT_TRUE(untilHost());
  panel_.reset();
  ASSERT_TRUE(until([this] { return !states_.back().isPresent; }));
  State expected;
  expected.hasBus = true;
  EXPECT_EQ(states_.back(), expected);
}

TEST_F(StatusNotifierWatcherTest, DoesNotRegisterBeforeItMay) {
  startPanel("waybar");
  startWatcher();
  watcher_->setRegistering(false);
  ASSERT_TRUE(untilHost());
  sync();
  EXPECT_THAT(panel_->items(), IsEmpty());
  watcher_->setRegistering(true);
  EXPECT_TRUE(untilRegistered());
}

TEST_F(StatusNotifierWatcherTest, GivesItsNameUpWhenItIsWithdrawn) {
  startPanel("waybar");
  startWatcher();
  ASSERT_TRUE(untilRegistered());
  const std::string name = panel_->items().front();
  EXPECT_TRUE(ownsName(name));
  watcher_->setRegistering(false);
  sync();
  EXPECT_FALSE(ownsName(name));
  panel_->drop(name);
  sync();
  EXPECT_EQ(time_.pendingCount(), 0U) << "not again by itself";
  watcher_->setRegistering(true);
  ASSERT_TRUE(untilRegistered(2));
  EXPECT_TRUE(ownsName(name));
}

TEST_F(StatusNotifierWatcherTest, TriesAgainWithAPanelThatIsNotReady) {
  startPanel("waybar", {.hasHost = true, .refusals = 2});
  startWatcher();
  ASSERT_TRUE(untilHost());
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  EXPECT_TRUE(panel_->items().empty());
  time_.advance(Seconds{1});
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{2});
  ASSERT_TRUE(untilRegistered());
}

TEST_F(StatusNotifierWatcherTest, ComesBackToAPanelThatDroppedIt) {
  startPanel("gnome-shell");
  startWatcher();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(untilHost());
  panel_->drop(panel_->items().front());
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{1});
  ASSERT_TRUE(untilRegistered(2));
  panel_->drop(panel_->items().front() + "/StatusNotifierItem");
  ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
  time_.advance(Seconds{2});
  ASSERT_TRUE(untilRegistered(3));
  EXPECT_EQ(panel_->items().front(), panel_->items().back());
}

TEST_F(StatusNotifierWatcherTest, LeavesAPanelAloneThatDropsItAgainAndAgain) {
  startPanel("gnome-shell");
  startWatcher();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(untilHost());
  for (std::size_t drops = 1; drops < 6; ++drops) {
    panel_->drop(panel_->items().front());
    ASSERT_TRUE(until([this] { return time_.pendingCount() == 1; }));
    time_.advance(Seconds{30});
    ASSERT_TRUE(untilRegistered(drops + 1));
  }
  panel_->drop(panel_->items().front());
  sync();
  EXPECT_EQ(time_.pendingCount(), 0U);
}

TEST_F(StatusNotifierWatcherTest, DoesNotMindOtherItemsThatLeaveThePanel) {
  startPanel("gnome-shell");
  startWatcher();
  ASSERT_TRUE(untilRegistered());
  ASSERT_TRUE(untilHost());
  panel_->drop(panel_->items().front() + "0");
  panel_->drop(":1.5@/StatusNotifierItem");
  sync();
  EXPECT_EQ(time_.pendingCount(), 0U);
}

}  // namespace
}  // namespace vantora
