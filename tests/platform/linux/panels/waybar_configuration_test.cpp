// SPDX-License-Identifier: MIT
#include "platform/linux/panels/waybar_configuration.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

#include "platform/linux/panels/panel.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

using namespace std::literals;
using test::writeBytes;
using testing::ElementsAre;

namespace fs = std::filesystem;

bool isVertical(std::string_view configuration) {
  return waybarLayout(configuration).isVertical;
}

TEST(WaybarConfiguration, IsVerticalWhereTheBarStandsAtASide) {
  EXPECT_TRUE(isVertical(R"({"position": "left", "modules-right": ["tray"]})"));
  EXPECT_TRUE(isVertical(R"({"position": "right", "modules-left": ["clock", "tray"]})"));
  EXPECT_FALSE(isVertical(R"({"position": "top", "modules-right": ["tray"]})"));
  EXPECT_FALSE(isVertical(R"({"position": "bottom", "modules-right": ["tray"]})"));
  EXPECT_FALSE(isVertical(R"({"modules-right": ["tray"]})"));
}

TEST(WaybarConfiguration, IsReadAsPeopleWriteIt) {
  EXPECT_TRUE(isVertical(R"(// -*- mode: jsonc -*-
{
    // "position": "top",
    "position": "left", /* a column */
    "modules-center": ["tray",],
})"));
}

TEST(WaybarConfiguration, CountsOnlyBarsWithATray) {
  EXPECT_TRUE(isVertical(R"([{"position": "top", "modules-left": ["clock"]},
                                   {"position": "left", "modules-left": ["tray"]}])"));
  EXPECT_FALSE(isVertical(R"([{"position": "left", "modules-left": ["clock"]},
                                    {"position": "top", "modules-left": ["tray"]}])"));
}

TEST(WaybarConfiguration, IsHorizontalWhereOneOfSeveralBarsWithATrayIs) {
  EXPECT_FALSE(isVertical(R"([{"position": "top", "modules-left": ["tray"]},
                                    {"position": "left", "modules-left": ["tray"]}])"));
  EXPECT_TRUE(isVertical(R"([{"position": "right", "modules-left": ["tray"]},
                                   {"position": "left", "modules-left": ["tray"]}])"));
}

TEST(WaybarConfiguration, FindsATrayThatHasANameOrStandsInAGroup) {
  for (const char* tray : {R"("modules-left": ["tray#second"])",
                           R"("modules-left": ["group/g"], "group/g": {"modules": ["tray"]})"}) {
    EXPECT_FALSE(isVertical(R"([{"position": "left", "modules-left": ["tray"]},{)" +
                            std::string(tray) + "}]"))
        << tray;
  }
}

TEST(WaybarConfiguration, CountsEveryBarWhereNoneShowsItsTray) {
  EXPECT_TRUE(isVertical(R"({"position": "left", "include": ["modules.json"]})"));
  EXPECT_FALSE(isVertical(R"([{"position": "left"}, {"position": "top"}])"));
}

TEST(WaybarConfiguration, IsHorizontalWhereNothingCanBeRead) {
  for (const char* text : {"", "left", "[]", "[[]]", "[1, null]", "{\"position\": [\"left\"]}",
                           "{\"position\": \"left\"", "\xff"}) {
    EXPECT_FALSE(isVertical(text)) << text;
  }
}

std::optional<int> iconHeight(std::string_view configuration) {
  return waybarLayout(configuration).iconHeight;
}

TEST(WaybarConfiguration, SaysHowHighTheTraysIconsAre) {
  EXPECT_EQ(iconHeight(R"({"modules-right": ["tray"], "tray": {"icon-size": 22}})"), 22);
  EXPECT_EQ(iconHeight(R"({"modules-right": ["tray#a"], "tray#a": {"icon-size": 30}})"), 30);
  EXPECT_EQ(iconHeight(R"([{"modules-right": ["tray"], "tray": {"icon-size": 22}},
                           {"modules-right": ["tray"], "tray": {"icon-size": 28}},
                           {"modules-right": ["clock"]}])"),
            28);
}

TEST(WaybarConfiguration, SaysNoHeightWhereATrayDoesNotSayIt) {
  for (const char* text :
       {"", R"({"modules-right": ["tray"]})", R"({"modules-right": ["tray"], "tray": {}})",
        R"({"modules-right": ["tray"], "tray": {"icon-size": "22"}})",
        R"({"modules-right": ["tray"], "tray": {"icon-size": 0}})",
        R"({"modules-right": ["tray"], "tray": {"icon-size": 4294967318}})",
        R"({"modules-right": ["tray"], "tray": {"icon-size": 22}, "tray#b": {}})",
        R"([{"modules-right": ["tray"], "tray": {"icon-size": 22}},
            {"modules-right": ["tray"], "include": ["tray.json"]}])"}) {
    EXPECT_EQ(iconHeight(text), std::nullopt) << text;
  }
}

TEST(WaybarConfiguration, IsTheFileThatTheCommandLineNames) {
  for (const std::string_view line :
       {"waybar\0-c\0side.json\0"sv, "waybar\0-b\0bar-0\0--config\0side.json\0"sv,
        "waybar\0--config=side.json\0-s\0style.css\0"sv, "waybar\0-c=side.json\0"sv,
        "waybar\0-c:side.json\0"sv}) {
    EXPECT_THAT(waybarConfigurations(line, "HOME=/home/ana\0"sv), ElementsAre("side.json"));
  }
}

TEST(WaybarConfiguration, IsLookedForInTheFoldersOfItsProcess) {
  EXPECT_THAT(
      waybarConfigurations("waybar\0"sv, "LANG=C\0HOME=/home/ana\0"sv),
      ElementsAre("/home/ana/.config/waybar/config", "/home/ana/.config/waybar/config.jsonc",
                  "/home/ana/waybar/config", "/home/ana/waybar/config.jsonc",
                  "/etc/xdg/waybar/config", "/etc/xdg/waybar/config.jsonc"));
  EXPECT_EQ(waybarConfigurations("", "XDG_CONFIG_HOME=/c\0HOME=/home/ana\0"sv).front(),
            "/c/waybar/config");
  EXPECT_EQ(waybarConfigurations("waybar\0-c"sv, "XDG_CONFIG_HOME=\0HOME=\0"sv).front(),
            "/etc/xdg/waybar/config");
}

class WaybarProcess : public testing::Test {
 protected:
  WaybarProcess() {
    fs::create_directories(home() / "waybar");
    fs::create_directories(process_);
    fs::create_directory_symlink(home(), process_ / "cwd");
    start("waybar\0"sv);
    writeBytes(process_ / "environ", "XDG_CONFIG_HOME=" + home().string() + '\0');
  }
  void start(std::string_view commandLine) { writeBytes(process_ / "cmdline", commandLine); }
  [[nodiscard]] fs::path home() const { return folder_ / "home"; }
  // As code asks: the row.
  [[nodiscard]] bool isVertical() const {
    return panelOf("waybar").readsLayout(process_.string()).isVertical;
  }

  static constexpr std::string_view column = R"({"position": "left"})";
  test::TemporaryFolder folder_;
  fs::path process_ = folder_ / "proc/12";
};

TEST_F(WaybarProcess, IsReadFromTheFirstFileThatExists) {
  EXPECT_FALSE(isVertical());
  writeBytes(home() / "waybar/config.jsonc", column);
  EXPECT_TRUE(isVertical());
  writeBytes(home() / "waybar/config", "{}");
  EXPECT_FALSE(isVertical());
}

TEST_F(WaybarProcess, IsReadFromARelativePathInItsOwnFolder) {
  writeBytes(home() / "side.json", column);
  start("waybar\0-c\0side.json\0"sv);
  EXPECT_TRUE(isVertical());
  start("waybar\0-c\0other.json\0"sv);
  EXPECT_FALSE(isVertical());
}

TEST_F(WaybarProcess, IsReadFromAnAbsolutePath) {
  writeBytes(folder_ / "side.json", column);
  start("waybar\0-c\0"s + (folder_ / "side.json").string() + '\0');
  EXPECT_TRUE(isVertical());
}

TEST_F(WaybarProcess, IsNotReadFromWhatIsNoFileOrTooLarge) {
  ASSERT_EQ(::mkfifo((home() / "waybar/config").c_str(), 0600), 0);
  writeBytes(home() / "waybar/config.jsonc", column);
  EXPECT_FALSE(isVertical()) << "and does not wait for a writer";
  fs::remove(home() / "waybar/config");
  writeBytes(home() / "waybar/config", std::string(column) + std::string(1024 * 1024, ' '));
  EXPECT_FALSE(isVertical());
}

TEST_F(WaybarProcess, IsHorizontalWhereTheProcessCannotBeSeen) {
  writeBytes(home() / "waybar/config", column);
  ASSERT_TRUE(isVertical());
  fs::remove(process_ / "environ");
  EXPECT_FALSE(isVertical());
}

TEST(WaybarConfiguration, IsTheOnlyOneOfAPanelThatIsRead) {
  for (const Panel& panel : knownPanels()) {
    EXPECT_EQ(panel.readsLayout != nullptr, panel.name == "waybar") << panel.name;
  }
}

}  // namespace
}  // namespace vantora
