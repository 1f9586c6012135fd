// SPDX-License-Identifier: MIT
//
// Clicks, and what is chosen from the menu, as a panel passes them on.
#include <gtest/gtest.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/linux/status_item/block_text_engine.hpp"
#include "platform/linux/status_item/linux_status_item.hpp"
#include "platform/linux/status_item/recorded_actions.hpp"
#include "platform/linux/status_item/scripted_panel.hpp"
#include "support/linux/bus_call.hpp"
#include "support/linux/loop_driver.hpp"
#include "support/linux/private_bus.hpp"

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
    user_.onPause = [this] { item_.show({}); };
    item_.setActions(user_.actions());
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
    return test::runUntil(loop_, [&] { return user_.did == what; });
  }

  PrivateBus bus_;
  UvLoop loop_;
  BlockTextEngine engine_;
  test::RecordedActions user_;
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
  EXPECT_TRUE(user_.did.empty());
}

TEST_F(StatusItemClick, GivesPanelsTheMenusPath) {
  panel_.ask();
  ASSERT_TRUE(test::runUntil(loop_, [this] { return panel_.properties.has_value(); }));
  EXPECT_EQ(panel_.properties->texts.at("Menu"), "/MenuBar");
  EXPECT_EQ(panel_.properties->numbers.at("ItemIsMenu"), 0);
}

TEST_F(StatusItemClick, DoesWhatIsChosenFromTheMenu) {
  for (const int id : {1, 2, 3}) {
    call(menuTarget(), "Event", "isvu", id, "clicked", "i", 0, 0U);
  }
  EXPECT_TRUE(untilDid({"open:", "pause", "quit"}));
}

TEST_F(StatusItemClick, ShowsTheOtherWordInTheMenuOncePaused) {
  call(menuTarget(), "Event", "isvu", 2, "clicked", "i", 0, 0U);
  ASSERT_TRUE(untilDid({"pause"}));
  const BusMessage answer = call(menuTarget(), "GetProperty", "is", 2, "label");
  const char* label = "";
  sd_bus_message_read(answer.get(), "v", "s", &label);
  EXPECT_STREQ(label, "Retomar");
}

}  // namespace
}  // namespace vantora
