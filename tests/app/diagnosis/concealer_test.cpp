// SPDX-License-Identifier: MIT
#include "app/diagnosis/concealer.hpp"

#include <gtest/gtest.h>

namespace vantora {
namespace {

const Concealer conceal({"/home/maria", "/srv/homes/maria", "", "/"});

TEST(Concealer, WritesTheHomeFolderAsATilde) {
  EXPECT_EQ(conceal("/home/maria/.local/bin/codex"), "~/.local/bin/codex");
  EXPECT_EQ(conceal("em /srv/homes/maria e /home/maria."), "em ~ e ~.");
  EXPECT_EQ(conceal("/usr/bin/codex"), "/usr/bin/codex");
}

TEST(Concealer, LeavesOutTheNamesOfOtherPeoplesHomes) {
  EXPECT_EQ(conceal("/home/mariana/bin/codex"), "/home/…/bin/codex");
  EXPECT_EQ(conceal("/Users/ana/x"), "/Users/…/x");
  EXPECT_EQ(conceal("/home/linuxbrew/.linuxbrew/bin/codex"),
            "/home/linuxbrew/.linuxbrew/bin/codex");
}

TEST(Concealer, LeavesOutAddressesOfHardwareAlsoInNames) {
  EXPECT_EQ(conceal("02:00:5e:10:00:01"), "…");
  EXPECT_EQ(conceal("sony_controller_battery_a0:ab:51:33:fe:01"), "sony_controller_battery_…");
  EXPECT_EQ(conceal("ps-controller-battery-A0-AB-51-33-FE-01"), "ps-controller-battery-…");
  EXPECT_EQ(conceal("enx00e04c680001"), "enx…");
  EXPECT_EQ(conceal("wlx00e04c680001, wwx00e04c680001"), "wlx…, wwx…");
  EXPECT_EQ(conceal("00e04c680001"), "…");
  EXPECT_EQ(conceal("hid-0018047D1234.0003-battery"), "hid-…-battery");
}

TEST(Concealer, LeavesOutAddressesOfTheNetworkAndOfPeople) {
  EXPECT_EQ(conceal("192.168.0.17"), "…");
  EXPECT_EQ(conceal("fe80::1 2001:db8:0:1:2:3:4:5"), "… …");
  EXPECT_EQ(conceal("maria.silva+x@exemplo.com.br entrou"), "… entrou");
}

TEST(Concealer, KeepsVersionsTimesAndNames) {
  for (const char* text :
       {"libuv 1.44.2", "12:30:45", "wlp3s0", "enp0s31f6", "BAT0", "ucsi-source-psy-USBC000:001",
        "6.1.0-28-amd64", "@openai/codex", "node@20/bin/node", "python@3.11", "0.1.0", "1.2.3.4.5",
        "7% 61°C | — 0,1M", "decaffe", "temp1–temp5", "300.1.1.1"}) {
    EXPECT_EQ(conceal(text), text);
  }
}

TEST(Concealer, LetsNoTextSteerATerminal) {
  EXPECT_EQ(conceal("a\x1b[2Jb\n\x7f"), "a?[2Jb??");
}

TEST(Concealer, ReachesEveryTextOfADocument) {
  const Json document{{"a", "/home/maria/x"}, {"b", Json::array()}, {"c", 3}};
  Json nested = document;
  nested["b"].append(document);
  const Json result = conceal.document(nested);
  EXPECT_EQ(asText(result["a"]), "~/x");
  EXPECT_EQ(asText(result["b"][0]["a"]), "~/x");
  EXPECT_EQ(asInteger(result["c"]), 3);
}

}  // namespace
}  // namespace vantora
