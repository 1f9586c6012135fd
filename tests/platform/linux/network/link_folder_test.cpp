// SPDX-License-Identifier: MIT
#include "platform/linux/network/link_folder.hpp"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace vantora {
namespace {

namespace fs = std::filesystem;

class LinkFolderTest : public testing::Test {
 protected:
  LinkFolderTest() {
    std::string pattern = (fs::temp_directory_path() / "vantora-sys-XXXXXX").string();
    root_ = ::mkdtemp(pattern.data());
    write("eth0", "ifindex", "4\n");
    write("eth0", "address", "02:00:5e:10:00:01\n");
    write("eth0", "statistics/rx_bytes", "123\n");
    write("eth0", "statistics/tx_bytes", "9223372036854775807\n");
  }
  ~LinkFolderTest() override { fs::remove_all(root_); }

  void write(const std::string& link, const std::string& attribute, const std::string& text) const {
    const fs::path path = root_ / "class/net" / link / attribute;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }
  [[nodiscard]] UniqueFd open(const std::string& name = "eth0", std::uint32_t index = 4,
                              const std::string& address = "02:00:5e:10:00:01") const {
    Rtnetlink::Link link;
    link.index = index;
    link.name = name;
    link.address = address;
    return openLinkFolder(root_.string(), link);
  }

  fs::path root_;
};

TEST_F(LinkFolderTest, OpensForTheRightIndexOnly) {
  EXPECT_TRUE(open());
  EXPECT_FALSE(open("eth0", 5));
  EXPECT_FALSE(open("eth1", 4));
}

TEST_F(LinkFolderTest, DoesNotOpenForANamesakeWithAnotherAddress) {
  EXPECT_FALSE(open("eth0", 4, "02:00:5e:10:00:02"));
  EXPECT_FALSE(open("eth0", 4, ""));
  write("eth0", "address", "\n");  // of a tunnel
  EXPECT_TRUE(open("eth0", 4, ""));
  EXPECT_FALSE(open());
  fs::remove(root_ / "class/net/eth0/address");
  EXPECT_FALSE(open());
  EXPECT_FALSE(open("eth0", 4, ""));
}

TEST_F(LinkFolderTest, DoesNotOpenWhereTheIndexCannotBeRead) {
  for (const char* text : {"", "x\n", "4 4\n", "-4\n", "99999999999999999999999\n"}) {
    write("eth0", "ifindex", text);
    EXPECT_FALSE(open()) << text;
  }
}

TEST_F(LinkFolderTest, DoesNotOpenWhatIsNoNameOfADevice) {
  write(".", "ifindex", "4\n");
  for (const char* name : {"", ".", "..", "eth0/statistics", "/", "../net/eth0"}) {
    EXPECT_FALSE(open(name)) << name;
  }
}

TEST_F(LinkFolderTest, KnowsWhetherItHasHardware) {
  EXPECT_FALSE(hasHardware(open()));
  fs::create_directory(root_ / "device");
  fs::create_directory_symlink(root_ / "device", root_ / "class/net/eth0/device");
  EXPECT_TRUE(hasHardware(open()));
  EXPECT_FALSE(hasHardware(UniqueFd()));
}

TEST_F(LinkFolderTest, ReadsBothCountersAnewEachTime) {
  const LinkStatistics statistics(open());
  ASSERT_TRUE(statistics.isOpen());
  EXPECT_EQ(statistics.read(),
            (NetworkCounters{.received = 123, .sent = 9'223'372'036'854'775'807}));
  write("eth0", "statistics/rx_bytes", "124\n");
  EXPECT_EQ(statistics.read()->received, 124U);
}

TEST_F(LinkFolderTest, ReadsNothingWhereACounterIsNoNumber) {
  for (const char* text : {"", "\n", "12x\n", "-1\n", "1 2\n", "18446744073709551616\n"}) {
    write("eth0", "statistics/tx_bytes", text);
    EXPECT_EQ(LinkStatistics(open()).read(), std::nullopt) << text;
  }
}

TEST_F(LinkFolderTest, IsNotOpenWhereACounterIsMissing) {
  fs::remove(root_ / "class/net/eth0/statistics/tx_bytes");
  EXPECT_FALSE(LinkStatistics(open()).isOpen());
  EXPECT_FALSE(LinkStatistics(UniqueFd()).isOpen());
  EXPECT_FALSE(LinkStatistics().isOpen());
}

}  // namespace
}  // namespace vantora
