// SPDX-License-Identifier: MIT
#include "sampling/link_reports.hpp"

#include <gtest/gtest.h>

#include <map>

#include "support/fake_network_source.hpp"

namespace vantora {
namespace {

using Whys = std::map<std::string, std::string>;

Whys whysOf(test::FakeNetworkSource& source, const std::optional<std::string>& preferred,
            const std::optional<std::string>& read) {
  Whys whys;
  for (const DeviceReport& report : linkReports(source, preferred, read)) {
    EXPECT_EQ(report.why.empty(), !report.feeds.empty()) << report.name;
    whys[report.name] = report.why;
  }
  return whys;
}

TEST(LinkReports, TellWhichLinkIsReadAndWhyTheOthersAreNot) {
  test::FakeNetworkSource source;
  for (const char* name : {"lo", "eth0", "wlan0", "usb0", "wwan0"}) {
    source.add(name);
  }
  source.setPhysical("lo", false);
  source.setUp("usb0", false);
  source.setAddressed("wwan0", false);
  EXPECT_EQ(whysOf(source, std::nullopt, "wlan0"), (Whys{{"lo", "sem hardware próprio"},
                                                         {"eth0", "a rota principal é por outra"},
                                                         {"wlan0", ""},
                                                         {"usb0", "está desligada"},
                                                         {"wwan0", "sem endereço"}}));
}

TEST(LinkReports, FollowTheUsersChoice) {
  test::FakeNetworkSource source;
  source.add("eth0");
  source.add("wlan0");
  source.setUp("wlan0", false);
  EXPECT_EQ(whysOf(source, "wlan0", std::nullopt),
            (Whys{{"eth0", "outra foi escolhida nas configurações"}, {"wlan0", "está desligada"}}));
}

TEST(LinkReports, AreNoneWhereTheTableCannotBeRead) {
  test::FakeNetworkSource source;
  source.add("eth0");
  source.failRead("x");
  EXPECT_TRUE(linkReports(source, std::nullopt, std::nullopt).empty());
}

}  // namespace
}  // namespace vantora
