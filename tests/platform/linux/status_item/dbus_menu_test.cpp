// SPDX-License-Identifier: MIT
//
// The menu on a bus of its own, as a panel fetches and uses it.
#include "platform/linux/status_item/dbus_menu.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "support/linux/bus_call.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"

namespace vantora {
namespace {

using test::BusMessage;
using testing::ElementsAre;
using testing::IsEmpty;

class DBusMenuTest : public testing::Test {
 protected:
  using Strings = std::vector<std::string>;

  void SetUp() override {
    menu_ = std::make_unique<DBusMenu>(
        connection_, [this] { return isPaused_; },
        [this](StatusMenuCommand command) { chosen_.push_back(command); });
    connection_.open();
    panel_.open();
    ASSERT_TRUE(untilConnected());
  }
  bool untilConnected() {
    const bool isConnected = test::runUntil(
        loop_, [this] { return connection_.bus() != nullptr && panel_.bus() != nullptr; });
    sd_bus_match_signal_async(panel_.bus(), out(match_), nullptr, DBusMenu::path,
                              "com.canonical.dbusmenu", "LayoutUpdated", onLayoutUpdated, nullptr,
                              this);
    return isConnected;
  }
  static int onLayoutUpdated(sd_bus_message* signal, void* self, sd_bus_error*) {
    std::uint32_t revision = 0;
    std::int32_t parent = -1;
    sd_bus_message_read(signal, "ui", &revision, &parent);
    EXPECT_EQ(parent, 0);
    static_cast<DBusMenuTest*>(self)->announced_.push_back(revision);
    return 0;
  }
  template <typename... Arguments>
  BusMessage call(const char* member, const char* types, Arguments... arguments) {
    const char* name = "";
    sd_bus_get_unique_name(connection_.bus(), &name);
    return test::callAndWait(loop_, panel_.bus(), {name, DBusMenu::path, "com.canonical.dbusmenu"},
                             member, types, arguments...);
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
  static std::vector<std::int32_t> readIds(sd_bus_message* message) {
    std::vector<std::int32_t> ids;
    std::int32_t id = 0;
    sd_bus_message_enter_container(message, 'a', "i");
    while (sd_bus_message_read(message, "i", &id) > 0) {
      ids.push_back(id);
    }
    sd_bus_message_exit_container(message);
    return ids;
  }
  Layout layout(int parent = 0, int depth = -1) {
    const BusMessage answer = call("GetLayout", "iias", parent, depth, 0);
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

  test::PrivateBus bus_;
  UvLoop loop_;
  bool isPaused_ = false;
  std::vector<StatusMenuCommand> chosen_;
  std::vector<std::uint32_t> announced_;
  BusConnection connection_{loop_.raw(), loop_.queue(), bus_.address()};
  BusConnection panel_{loop_.raw(), loop_.queue(), bus_.address()};
  BusSlot match_;
  std::unique_ptr<DBusMenu> menu_;
};

TEST_F(DBusMenuTest, HasAMenuOfThreeEntries) {
  const Layout menu = layout();
  EXPECT_EQ(menu.root.at("children-display"), "submenu");
  const std::vector<std::pair<int, std::string>> expected{
      {1, "Configurações…"}, {2, "Pausar"}, {3, "Sair"}};
  EXPECT_EQ(menu.children, expected);
  EXPECT_TRUE(layout(0, 0).children.empty());
  EXPECT_EQ(layout(0, 1).children.size(), 3U);
  EXPECT_EQ(layout(2, -1).root.at("label"), "Pausar");
}

TEST_F(DBusMenuTest, ReportsWhatIsChosen) {
  for (const int id : {1, 2, 3}) {
    EXPECT_FALSE(isError(call("Event", "isvu", id, "clicked", "i", 0, 0U)));
  }
  EXPECT_THAT(chosen_, ElementsAre(StatusMenuCommand::openSettings, StatusMenuCommand::togglePause,
                                   StatusMenuCommand::quit));
}

TEST_F(DBusMenuTest, TakesOnlyAClickForAChoice) {
  EXPECT_FALSE(isError(call("Event", "isvu", 1, "hovered", "i", 0, 0U)));
  EXPECT_FALSE(isError(call("Event", "isvu", 0, "opened", "i", 0, 0U)));
  EXPECT_FALSE(isError(call("Event", "isvu", 0, "clicked", "i", 0, 0U)));
  EXPECT_THAT(chosen_, IsEmpty());
}

TEST_F(DBusMenuTest, TakesAGroupOfEventsAndNamesTheEntriesThatItDoesNotHave) {
  const BusMessage answer = call("EventGroup", "a(isvu)", 3, 3, "clicked", "i", 0, 0U, 9, "clicked",
                                 "i", 0, 0U, 1, "clicked", "i", 0, 0U);
  EXPECT_THAT(chosen_, ElementsAre(StatusMenuCommand::quit, StatusMenuCommand::openSettings));
  EXPECT_THAT(readIds(answer.get()), ElementsAre(9));
}

TEST_F(DBusMenuTest, AnnouncesAnotherLayoutOnlyWhenTheWordHasChanged) {
  const std::uint32_t before = layout().revision;
  EXPECT_FALSE(menu_->refresh());
  EXPECT_EQ(layout().revision, before);
  isPaused_ = true;
  EXPECT_TRUE(menu_->refresh());
  EXPECT_FALSE(menu_->refresh());
  EXPECT_EQ(layout().revision, before + 1);
  EXPECT_EQ(labels(), (Strings{"Configurações…", "Retomar", "Sair"}));
  EXPECT_THAT(announced_, ElementsAre(before + 1));
  isPaused_ = false;
  EXPECT_TRUE(menu_->refresh());
  EXPECT_EQ(labels(), (Strings{"Configurações…", "Pausar", "Sair"}));
}

TEST_F(DBusMenuTest, IsThereAgainWhenTheBusReturns) {
  bus_.stop();
  ASSERT_TRUE(test::runUntil(loop_, [this] { return connection_.bus() == nullptr; }));
  isPaused_ = true;
  EXPECT_TRUE(menu_->refresh()) << "without a bus to announce it on";
  bus_.start();
  ASSERT_TRUE(untilConnected());
  EXPECT_EQ(labels()[1], "Retomar");
}

TEST_F(DBusMenuTest, LooksAgainWhenAPanelIsAboutToOpenTheMenu) {
  int isStale = -1;
  const auto about = [&] {
    const BusMessage answer = call("AboutToShow", "i", 0);
    sd_bus_message_read(answer.get(), "b", &isStale);
    return isStale;
  };
  EXPECT_EQ(about(), 0);
  isPaused_ = true;  // by the settings window
  EXPECT_EQ(about(), 1);
  EXPECT_EQ(about(), 0);
  EXPECT_EQ(labels()[1], "Retomar");
}

TEST_F(DBusMenuTest, AnswersForGroupsAndSingleProperties) {
  BusMessage answer = call("GetGroupProperties", "aias", 2, 3, 99, 0);
  int id = 0;
  sd_bus_message_enter_container(answer.get(), 'a', "(ia{sv})");
  ASSERT_GT(sd_bus_message_enter_container(answer.get(), 'r', "ia{sv}"), 0);
  sd_bus_message_read(answer.get(), "i", &id);
  EXPECT_EQ(id, 3);
  EXPECT_EQ(readProperties(answer.get()).at("label"), "Sair");
  sd_bus_message_exit_container(answer.get());
  EXPECT_EQ(sd_bus_message_enter_container(answer.get(), 'r', "ia{sv}"), 0) << "99 is left out";

  answer = call("GetProperty", "is", 1, "label");
  const char* label = "";
  sd_bus_message_read(answer.get(), "v", "s", &label);
  EXPECT_STREQ(label, "Configurações…");

  isPaused_ = true;
  answer = call("AboutToShowGroup", "ai", 2, 0, 99);
  EXPECT_THAT(readIds(answer.get()), ElementsAre(0)) << "the layout has changed";
  EXPECT_THAT(readIds(answer.get()), ElementsAre(99)) << "not in the menu";
}

TEST_F(DBusMenuTest, RefusesEntriesThatTheMenuDoesNotHave) {
  EXPECT_TRUE(isError(call("GetLayout", "iias", 42, -1, 0)));
  EXPECT_TRUE(isError(call("Event", "isvu", -1, "clicked", "i", 0, 0U)));
  EXPECT_TRUE(isError(call("AboutToShow", "i", 4)));
  EXPECT_TRUE(isError(call("GetProperty", "is", 1, "icon-name")));
  EXPECT_THAT(chosen_, IsEmpty());
}

}  // namespace
}  // namespace vantora
