// SPDX-License-Identifier: MIT
#include "platform/linux/desktop/autostart_login_item.hpp"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cerrno>

#include "settings/error_text.hpp"
#include "support/temporary_folder.hpp"

namespace vantora {
namespace {

namespace fs = std::filesystem;
using test::readBytes;
using test::writeBytes;

class AutostartLoginItemTest : public testing::Test {
 protected:
  AutostartLoginItemTest() {
    fs::create_directories(folder_ / "bin");
    writeBytes(folder_ / "bin/vantora", "#!/bin/sh\n");
    fs::permissions(folder_ / "bin/vantora", fs::perms(0755));
    places_.userFolder = folder_ / "config/autostart";
    places_.systemFolders = {folder_ / "etc/autostart"};
    places_.currentDesktops = {"ubuntu", "GNOME"};
    places_.searchPath = {(folder_ / "bin").string()};
    places_.executable = folder_ / "bin/vantora";
  }
  LoginItemStatus status() { return AutostartLoginItem(places_).status(); }
  std::optional<Fault> setRegistered(bool registered) {
    return AutostartLoginItem(places_).setRegistered(registered);
  }
  // The status with these lines under the head of an otherwise working entry.
  LoginItemStatus statusWith(const std::string& lines) {
    fs::create_directories(places_.userFolder);
    writeBytes(file_, "[Desktop Entry]\nType=Application\nName=Vantora\nExec=vantora\n" + lines);
    return status();
  }

  test::TemporaryFolder folder_;
  AutostartLoginItem::Places places_;
  const fs::path file_ = folder_ / "config/autostart/vantora.desktop";
};

TEST_F(AutostartLoginItemTest, IsNotRegisteredWithoutAFile) {
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(AutostartLoginItemTest, IsEnabledOnceItWasRegistered) {
  EXPECT_EQ(setRegistered(true), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  EXPECT_EQ(setRegistered(true), std::nullopt);
  EXPECT_EQ(setRegistered(false), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_FALSE(fs::exists(file_));
  EXPECT_EQ(setRegistered(false), std::nullopt);
}

TEST_F(AutostartLoginItemTest, FindsItsProgramUnderEveryName) {
  for (const char* name :
       {"with space", "quo\"te", "dollar$HOME", "back\\slash", "per%cent", "tick`s", "ção", "%f"}) {
    places_.executable = folder_ / name;
    fs::copy_file(folder_ / "bin/vantora", places_.executable);
    ASSERT_EQ(setRegistered(true), std::nullopt);
    EXPECT_EQ(status(), LoginItemStatus::enabled) << readBytes(file_);
  }
}

TEST_F(AutostartLoginItemTest, CountsAnEntryThatIsSwitchedOffAsNotRegistered) {
  EXPECT_EQ(statusWith(""), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("Hidden=true\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Hidden = true \r\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("Hidden=false\n"), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("X-GNOME-Autostart-enabled=false\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("X-GNOME-Autostart-enabled=true\n"), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("[Other]\nHidden=true\n"), LoginItemStatus::enabled);
}

TEST_F(AutostartLoginItemTest, LooksAtTheDesktopsThatTheEntryIsFor) {
  EXPECT_EQ(statusWith("OnlyShowIn=KDE;GNOME;\n"), LoginItemStatus::enabled);
  EXPECT_EQ(statusWith("OnlyShowIn=KDE;\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("OnlyShowIn=\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("NotShowIn=GNOME;\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(statusWith("NotShowIn=KDE;\n"), LoginItemStatus::enabled);
  places_.currentDesktops.clear();
  EXPECT_EQ(statusWith("OnlyShowIn=GNOME;\n"), LoginItemStatus::notRegistered);
}

TEST_F(AutostartLoginItemTest, SaysThatTheProgramIsGone) {
  EXPECT_EQ(statusWith("TryExec=/no/such/program\n"), LoginItemStatus::notFound);
  EXPECT_EQ(statusWith("Exec=\"/no such/program\" --flag\n"), LoginItemStatus::notFound);
  ASSERT_EQ(setRegistered(true), std::nullopt);
  fs::remove(places_.executable);
  EXPECT_EQ(status(), LoginItemStatus::notFound);
}

TEST_F(AutostartLoginItemTest, CountsAMalformedFileAsNotRegistered) {
  for (const char* text : {"", "garbage", "[Desktop Entry]\n", "Exec=vantora\n[Desktop Entry]\n",
                           "[Desktop Entry]\nType=Application\nExec=vantora\nno equals sign\n",
                           "[Desktop Entry]\nType=Link\nExec=vantora\n",
                           "[Desktop Entry]\nType=Application\nExec=\n", "[Desktop Entry\n"}) {
    fs::create_directories(places_.userFolder);
    writeBytes(file_, text);
    EXPECT_EQ(status(), LoginItemStatus::notRegistered) << text;
  }
}

TEST_F(AutostartLoginItemTest, NeverWaitsForWhatIsNoFile) {
  fs::create_directories(places_.userFolder);
  ASSERT_EQ(::mkfifo(file_.c_str(), 0600), 0);
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  fs::remove(file_);
  fs::create_symlink("/dev/zero", file_);
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(AutostartLoginItemTest, RegistersOverAMalformedFile) {
  EXPECT_EQ(statusWith("Hidden=true\n"), LoginItemStatus::notRegistered);
  EXPECT_EQ(setRegistered(true), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(AutostartLoginItemTest, HidesAnEntryOfTheSystemAndShowsItAgain) {
  fs::create_directories(places_.systemFolders[0]);
  writeBytes(places_.systemFolders[0] / "vantora.desktop",
             "[Desktop Entry]\nType=Application\nName=Vantora\nExec=vantora\n");
  EXPECT_EQ(status(), LoginItemStatus::enabled);
  EXPECT_EQ(setRegistered(false), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
  EXPECT_EQ(setRegistered(true), std::nullopt);
  EXPECT_EQ(status(), LoginItemStatus::enabled);
}

TEST_F(AutostartLoginItemTest, SaysWhyItCouldNotRegister) {
  writeBytes(folder_ / "config", "in the way");
  EXPECT_EQ(setRegistered(true), Fault::absent(systemErrorText(ENOTDIR)));
  EXPECT_EQ(setRegistered(false), std::nullopt);
  fs::remove(folder_ / "config");
  fs::create_directories(file_ / "folder in its place");
  ASSERT_TRUE(setRegistered(true));
  EXPECT_EQ(setRegistered(true)->detail, systemErrorText(EISDIR));
  EXPECT_EQ(setRegistered(false)->detail, systemErrorText(EISDIR));
}

TEST_F(AutostartLoginItemTest, RefusesWithoutAHome) {
  places_.userFolder.clear();
  EXPECT_TRUE(setRegistered(true));
  EXPECT_EQ(status(), LoginItemStatus::notRegistered);
}

TEST_F(AutostartLoginItemTest, TakesItsPlacesFromTheEnvironment) {
  const auto environment = [](const char* name) -> std::optional<std::string> {
    const std::string_view wanted = name;
    return wanted == "XDG_CONFIG_HOME"       ? std::optional<std::string>("/u/cfg")
           : wanted == "XDG_CONFIG_DIRS"     ? std::optional<std::string>("/a:relative:/b")
           : wanted == "XDG_CURRENT_DESKTOP" ? std::optional<std::string>("ubuntu:GNOME")
           : wanted == "PATH"                ? std::optional<std::string>("/usr/bin::/bin")
                                             : std::nullopt;
  };
  const auto places = AutostartLoginItem::placesOf("/opt/vantora", environment);
  EXPECT_EQ(places.userFolder, "/u/cfg/autostart");
  EXPECT_EQ(places.systemFolders, (std::vector<fs::path>{"/a/autostart", "/b/autostart"}));
  EXPECT_EQ(places.currentDesktops, (std::vector<std::string>{"ubuntu", "GNOME"}));
  EXPECT_EQ(places.searchPath, (std::vector<std::string>{"/usr/bin", "/bin"}));
  EXPECT_EQ(places.executable, "/opt/vantora");
}

}  // namespace
}  // namespace vantora
