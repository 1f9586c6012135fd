// SPDX-License-Identifier: MIT
//
// Clicks and the menu, as a panel passes them on.
#include <gtest/gtest.h>
#include <unistd.h>

#include <map>
#include <memory>

#include "platform/linux/block_text_engine.hpp"
#include "platform/linux/bus_call.hpp"
#include "platform/linux/linux_status_item.hpp"
#include "platform/linux/loop_driver.hpp"
#include "platform/linux/private_bus.hpp"
#include "platform/linux/scripted_panel.hpp"

namespace vantora {
namespace {

using test::BlockTextEngine;
using test::BusMessage;
using test::BusTarget;
using test::PrivateBus;
using test::ScriptedPanel;

class StatusItemClick : public testing::Test {
 protected:
  using Strings = std::vector<std::string>;

  StatusItemClick() {
    item_.setActions(
        {.openSettings =
             [this](std::string_view token) { did_.push_back("open:" + std::string(token)); },
         .togglePause =
             [this] {
               isPaused_ = !isPaused_;
               did_.emplace_back("pause");
               item_.show({});
             },
         .quit = [this] { did_.emplace_back("quit"); },
         .isPaused = [this] { return isPaused_; }});
    panelConnection_.open();
    itemConnection_.open();
    EXPECT_TRUE(test::runUntil(loop_, [this] { return panel_.items().size() == 1; }));
  }

  BusTarget itemTarget() const {
    return {panel_.items().back(), "/StatusNotifierItem", "org.kde.StatusNotifierItem"};
  }
  BusTarget menuTarget() const {
    return {panel_.items().back(), "/MenuBar", "com.canonical.dbusmenu"};
  }
  template <typename... Arguments>
  BusMessage call(const BusTarget& target, const char* member, const char* types,
                  Arguments... arguments) {
    return test::callAndWait(loop_, panelConnection_.bus(), target, member, types, arguments...);
  }
  bool untilDid(const Strings& what) {
    return test::runUntil(loop_, [&] { return did_ == what; });
  }

  struct Layout {
    std::uint32_t revision = 0;
    std::map<std::string, std::string> root;
    std::vector<std::pair<int, std::string>> children;  // id and label
  };
  static std::map<std::string, std::string> readProperties(sd_bus_message* message) {
    std::map<std::string, std::string> properties;
    sd_bus_message_enter_container(message, 'a', "{sv}");
    while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
      const char* name = "";
      const char* value = "";
      sd_bus_message_read(message, "sv", &name, "s", &value);
      properties[name] = value;
      sd_bus_message_exit_container(message);
    }
    sd_bus_message_exit_container(message);
    return properties;
  }
  Layout layout(int parent = 0, int depth = -1) {
    const BusMessage answer = call(menuTarget(), "GetLayout", "iias", parent, depth, 0);
    Layout read;
    sd_bus_message* message = answer.get();
    int id = 0;
    sd_bus_message_read(message, "u", &read.revision);
    sd_bus_message_enter_container(message, 'r', "ia{sv}av");
    sd_bus_message_read(message, "i", &id);
    read.root = readProperties(message);
    sd_bus_message_enter_container(message, 'a', "v");
    while (sd_bus_message_enter_container(message, 'v', "(ia{sv}av)") > 0) {
      sd_bus_message_enter_container(message, 'r', "ia{sv}av");
      sd_bus_message_read(message, "i", &id);
      read.children.emplace_back(id, readProperties(message)["label"]);
      sd_bus_message_skip(message, "av");
      sd_bus_message_exit_container(message);
      sd_bus_message_exit_container(message);
    }
    return read;
  }
  Strings labels() {
    Strings texts;
    for (const auto& [id, label] : layout().children) {
      texts.push_back(label);
    }
    return texts;
  }

  PrivateBus bus_;
  UvLoop loop_;
  BlockTextEngine engine_;
  Strings did_;
  bool isPaused_ = false;
  BusConnection panelConnection_{loop_.raw(), loop_.queue(), bus_.address()};
  BusConnection itemConnection_{loop_.raw(), loop_.queue(), bus_.address()};
  ScriptedPanel panel_{panelConnection_};
  LinuxStatusItem item_{itemConnection_, loop_.queue(), engine_, {}, [](StatusItemSituation) {}};
};

TEST_F(StatusItemClick, OpensTheSettings) {
  EXPECT_FALSE(isError(call(itemTarget(), "Activate", "ii", 10, 20)));
  EXPECT_TRUE(untilDid({"open:"}));
  call(itemTarget(), "SecondaryActivate", "ii", 10, 20);
  EXPECT_TRUE(untilDid({"open:", "open:"}));
}

TEST_F(StatusItemClick, PassesTheActivationTokenOnOnce) {
  call(itemTarget(), "ProvideXdgActivationToken", "s", "token-7");
  call(itemTarget(), "Activate", "ii", 10, 20);
  EXPECT_TRUE(untilDid({"open:token-7"}));
  call(itemTarget(), "Activate", "ii", 10, 20);
  EXPECT_TRUE(untilDid({"open:token-7", "open:"}));
}

TEST_F(StatusItemClick, IgnoresTheWheel) {
  EXPECT_FALSE(isError(call(itemTarget(), "Scroll", "is", 120, "vertical")));
  EXPECT_TRUE(did_.empty());
}

TEST_F(StatusItemClick, TellsPanelsWhereTheMenuIs) {
  panel_.ask();
  ASSERT_TRUE(test::runUntil(loop_, [this] { return panel_.properties.has_value(); }));
  EXPECT_EQ(panel_.properties->texts.at("Menu"), "/MenuBar");
  EXPECT_EQ(panel_.properties->numbers.at("ItemIsMenu"), 0);
}

TEST_F(StatusItemClick, HasAMenuOfThreeEntries) {
  const Layout menu = layout();
  EXPECT_EQ(menu.root.at("children-display"), "submenu");
  const std::vector<std::pair<int, std::string>> expected{
      {1, "Configurações…"}, {2, "Pausar"}, {3, "Sair"}};
  EXPECT_EQ(menu.children, expected);
  EXPECT_TRUE(layout(0, 0).children.empty());
  EXPECT_EQ(layout(0, 1).children.size(), 3U);
  EXPECT_EQ(layout(2, -1).root.at("label"), "Pausar");
}

TEST_F(StatusItemClick, DoesWhatIsChosenFromTheMenu) {
  for (const int id : {1, 2, 3}) {
    call(menuTarget(), "Event", "isvu", id, "clicked", "i", 0, 0U);
  }
  EXPECT_TRUE(untilDid({"open:", "pause", "quit"}));
  call(menuTarget(), "Event", "isvu", 1, "hovered", "i", 0, 0U);
  call(menuTarget(), "Event", "isvu", 0, "opened", "i", 0, 0U);
  call(menuTarget(), "EventGroup", "a(isvu)", 1, 3, "clicked", "i", 0, 0U);
  EXPECT_TRUE(untilDid({"open:", "pause", "quit", "quit"}));
}

TEST_F(StatusItemClick, ShowsTheOtherWordOncePaused) {
  const std::uint32_t revision = layout().revision;
  call(menuTarget(), "Event", "isvu", 2, "clicked", "i", 0, 0U);
  ASSERT_TRUE(untilDid({"pause"}));
  EXPECT_EQ(labels(), (Strings{"Configurações…", "Retomar", "Sair"}));
  EXPECT_GT(layout().revision, revision);
  call(menuTarget(), "Event", "isvu", 2, "clicked", "i", 0, 0U);
  ASSERT_TRUE(untilDid({"pause", "pause"}));
  EXPECT_EQ(labels(), (Strings{"Configurações…", "Pausar", "Sair"}));
}

TEST_F(StatusItemClick, LooksAgainWhenAPanelIsAboutToOpenTheMenu) {
  int isStale = -1;
  const auto about = [&] {
    const BusMessage answer = call(menuTarget(), "AboutToShow", "i", 0);
    sd_bus_message_read(answer.get(), "b", &isStale);
    return isStale;
  };
  EXPECT_EQ(about(), 0);
  isPaused_ = true;  // by the settings window
  EXPECT_EQ(about(), 1);
  EXPECT_EQ(about(), 0);
  EXPECT_EQ(labels()[1], "Retomar");
}

TEST_F(StatusItemClick, AnswersForGroupsAndSingleProperties) {
  BusMessage answer = call(menuTarget(), "GetGroupProperties", "aias", 2, 3, 99, 0);
  int id = 0;
  sd_bus_message_enter_container(answer.get(), 'a', "(ia{sv})");
  ASSERT_GT(sd_bus_message_enter_container(answer.get(), 'r', "ia{sv}"), 0);
  sd_bus_message_read(answer.get(), "i", &id);
  EXPECT_EQ(id, 3);
  EXPECT_EQ(readProperties(answer.get()).at("label"), "Sair");
  sd_bus_message_exit_container(answer.get());
  EXPECT_EQ(sd_bus_message_enter_container(answer.get(), 'r', "ia{sv}"), 0) << "99 is left out";

  answer = call(menuTarget(), "GetProperty", "is", 1, "label");
  const char* label = "";
  sd_bus_message_read(answer.get(), "v", "s", &label);
  EXPECT_STREQ(label, "Configurações…");

  answer = call(menuTarget(), "AboutToShowGroup", "ai", 2, 0, 99);
  EXPECT_FALSE(isError(answer));
}

TEST_F(StatusItemClick, RefusesEntriesThatTheMenuDoesNotHave) {
  EXPECT_TRUE(isError(call(menuTarget(), "GetLayout", "iias", 42, -1, 0)));
  EXPECT_TRUE(isError(call(menuTarget(), "Event", "isvu", -1, "clicked", "i", 0, 0U)));
  EXPECT_TRUE(isError(call(menuTarget(), "AboutToShow", "i", 4)));
  EXPECT_TRUE(isError(call(menuTarget(), "GetProperty", "is", 1, "icon-name")));
  EXPECT_TRUE(did_.empty());
}

}  // namespace
}  // namespace vantora
