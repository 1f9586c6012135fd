// SPDX-License-Identifier: MIT
#include "sampling/apple/interface_list.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <map>

namespace vantora {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint8_t interfaceInfo2 = 0x12;
constexpr std::uint8_t newAddress = 0xc;
constexpr std::uint8_t ethernet = 6;
constexpr std::uint8_t loopback = 24;

// Builds a table record by record, at the offsets of if_msghdr2.
class Table {
 public:
  struct Record {
    std::uint16_t length = 160;
    std::uint8_t type = interfaceInfo2;
    std::uint32_t flags = 0x8863;  // up, broadcast, running, simplex, multicast
    std::uint16_t index = 1;
    std::uint8_t linkType = ethernet;
    std::uint64_t received = 0;
    std::uint64_t sent = 0;
    std::size_t bytesHere = 160;  // what the buffer really holds of it
  };

  Table& add(const Record& record) {
    std::vector<std::byte> bytes(std::max<std::size_t>(record.bytesHere, 112), std::byte{0xEE});
    const auto put = [&](std::size_t offset, auto number) {
      std::memcpy(bytes.data() + offset, &number, sizeof number);
    };
    put(0, record.length);
    put(2, std::uint8_t{5});
    put(3, record.type);
    put(8, record.flags);
    put(12, record.index);
    put(32, record.linkType);
    put(96, record.received);
    put(104, record.sent);
    bytes.resize(record.bytesHere);
    bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    return *this;
  }

  [[nodiscard]] const std::vector<std::byte>& bytes() const { return bytes_; }

 private:
  std::vector<std::byte> bytes_;
};

class ScriptedCalls final : public InterfaceListCalls {
 public:
  std::map<std::uint32_t, std::string> names{{1, "lo0"}, {4, "en0"}, {5, "en1"}};
  std::optional<std::size_t> needed = 0;
  std::vector<std::byte> content;
  bool fillFails = false;
  int fills = 0;
  std::vector<std::byte> seenBuffer;

  std::optional<std::size_t> neededBytes() override { return needed; }
  std::optional<std::size_t> fill(std::span<std::byte> buffer) override {
    ++fills;
    seenBuffer.assign(buffer.begin(), buffer.end());
    if (fillFails) {
      return std::nullopt;
    }
    std::copy_n(content.begin(), std::min(buffer.size(), content.size()), buffer.begin());
    return content.size();
  }
  std::optional<std::string> nameOfIndex(std::uint32_t index) override {
    const auto found = names.find(index);
    return found != names.end() ? std::optional(found->second) : std::nullopt;
  }
};

class InterfaceListReaderTest : public testing::Test {
 protected:
  ScriptedCalls calls_;

  InterfaceList walk(const Table& table) {
    InterfaceList list = InterfaceListReader::walk(table.bytes(), calls_);
    EXPECT_EQ(list.interfaces.size(), list.counters.size());
    return list;
  }
};

TEST_F(InterfaceListReaderTest, ReadsNameFlagsAndBothCountersOfEachRecord) {
  const InterfaceList list =
      walk(Table()
               .add({.flags = 0x8049, .index = 1, .linkType = loopback, .received = 7, .sent = 8})
               .add({.index = 4, .received = 0x1'2345'6789'ABCDULL, .sent = 0xFFFF'FFFF'FFFFULL}));
  EXPECT_THAT(list.interfaces, ElementsAre(NetworkInterface{"lo0", 1, true, false},
                                           NetworkInterface{"en0", 4, true, true}));
  EXPECT_THAT(list.counters, ElementsAre(NetworkCounters{.received = 7, .sent = 8},
                                         NetworkCounters{.received = 0x1'2345'6789'ABCDULL,
                                                         .sent = 0xFFFF'FFFF'FFFFULL}));
}

TEST_F(InterfaceListReaderTest, TakesTheUpFlagForUp) {
  const InterfaceList list =
      walk(Table().add({.flags = 0x8862, .index = 4}).add({.flags = 0x1, .index = 5}));
  EXPECT_FALSE(list.interfaces.at(0).isUp);
  EXPECT_TRUE(list.interfaces.at(1).isUp);
}

TEST_F(InterfaceListReaderTest, TakesOnlyEthernetUnderANameWithEnForPhysical) {
  calls_.names = {{1, "bridge0"}, {2, "utun0"}, {3, "en"}, {4, "en0"}, {5, "xen0"}, {6, "En0"}};
  const InterfaceList list = walk(Table()
                                      .add({.index = 1})
                                      .add({.index = 2, .linkType = 1})
                                      .add({.index = 3})
                                      .add({.index = 4, .linkType = loopback})
                                      .add({.index = 5})
                                      .add({.index = 6}));
  std::vector<bool> physical;
  for (const NetworkInterface& interface : list.interfaces) {
    physical.push_back(interface.isPhysical);
  }
  EXPECT_THAT(physical, ElementsAre(false, false, true, false, false, false));
}

TEST_F(InterfaceListReaderTest, StepsOverRecordsOfOtherTypes) {
  const InterfaceList list = walk(Table()
                                      .add({.index = 4})
                                      .add({.length = 40, .type = newAddress, .bytesHere = 40})
                                      .add({.length = 300, .type = 0xFF, .bytesHere = 300})
                                      .add({.index = 5}));
  EXPECT_THAT(list.interfaces, ElementsAre(testing::Field(&NetworkInterface::name, "en0"),
                                           testing::Field(&NetworkInterface::name, "en1")));
}

TEST_F(InterfaceListReaderTest, StepsByTheLengthOfARecordThatIsLongerThanItsHeader) {
  const InterfaceList list =
      walk(Table().add({.length = 200, .index = 4, .bytesHere = 200}).add({.index = 5}));
  EXPECT_EQ(list.interfaces.size(), 2U);
}

TEST_F(InterfaceListReaderTest, FindsNothingInATableShorterThanOneHeader) {
  EXPECT_THAT(walk(Table()).interfaces, IsEmpty());
  EXPECT_THAT(walk(Table().add({.length = 159, .index = 4, .bytesHere = 159})).interfaces,
              IsEmpty());
}

TEST_F(InterfaceListReaderTest, DoesNotExamineARecordWithFewerBytesThanAHeaderLeft) {
  const InterfaceList list =
      walk(Table().add({.index = 4}).add({.length = 120, .index = 5, .bytesHere = 120}));
  EXPECT_EQ(list.interfaces.size(), 1U);
}

TEST_F(InterfaceListReaderTest, PassesOverAnInterfaceRecordThatIsShorterThanItsHeader) {
  const InterfaceList list =
      walk(Table().add({.length = 120, .index = 5, .bytesHere = 120}).add({.index = 4}));
  EXPECT_THAT(list.interfaces, ElementsAre(NetworkInterface{"en0", 4, true, true}));
}

TEST_F(InterfaceListReaderTest, StopsAtALengthOfZero) {
  const InterfaceList list =
      walk(Table().add({.index = 4}).add({.length = 0, .index = 5}).add({.index = 5}));
  EXPECT_EQ(list.interfaces.size(), 1U);
}

TEST_F(InterfaceListReaderTest, StopsAtARecordThatRunsPastTheEnd) {
  const InterfaceList list = walk(Table().add({.index = 4}).add({.length = 161, .index = 5}));
  EXPECT_EQ(list.interfaces.size(), 1U);
}

TEST_F(InterfaceListReaderTest, SkipsARecordWhoseIndexHasNoName) {
  const InterfaceList list = walk(Table().add({.index = 9}).add({.index = 4}));
  EXPECT_THAT(list.interfaces, ElementsAre(testing::Field(&NetworkInterface::name, "en0")));
}

TEST_F(InterfaceListReaderTest, RepairsBadBytesInAName) {
  calls_.names[4] =
      "en\xFF"
      "0";
  EXPECT_EQ(walk(Table().add({.index = 4})).interfaces.at(0).name, "en\uFFFD0");
}

TEST_F(InterfaceListReaderTest, ReadsTheTableThatTheCallsGive) {
  calls_.content = Table().add({.index = 4, .received = 3}).bytes();
  calls_.needed = calls_.content.size();
  const Result<InterfaceList> list = InterfaceListReader::read(calls_);
  ASSERT_TRUE(list.hasValue());
  EXPECT_EQ(list->counters.at(0).received, 3U);
}

TEST_F(InterfaceListReaderTest, WalksOnlyTheBytesThatTheSecondCallFilled) {
  calls_.content = Table().add({.index = 4}).bytes();
  calls_.needed = 1000;
  const Result<InterfaceList> list = InterfaceListReader::read(calls_);
  ASSERT_TRUE(list.hasValue());
  EXPECT_EQ(list->interfaces.size(), 1U);
  EXPECT_EQ(calls_.seenBuffer, std::vector<std::byte>(1000)) << "zero-filled before the call";
}

TEST_F(InterfaceListReaderTest, BelievesNoMoreBytesThanItGaveRoomFor) {
  calls_.content = Table().add({.index = 4}).add({.index = 5}).bytes();
  calls_.needed = 160;
  const Result<InterfaceList> list = InterfaceListReader::read(calls_);
  ASSERT_TRUE(list.hasValue());
  EXPECT_EQ(list->interfaces.size(), 1U);
}

class InterfaceListFailureTest : public InterfaceListReaderTest {
 protected:
  void expectFailure() {
    const Result<InterfaceList> list = InterfaceListReader::read(calls_);
    ASSERT_FALSE(list.hasValue());
    EXPECT_EQ(list.fault(), Fault::failed("sysctl NET_RT_IFLIST2 falhou"));
  }
};

TEST_F(InterfaceListFailureTest, FailsWhenTheLengthCannotBeLearnt) {
  calls_.needed = std::nullopt;
  expectFailure();
  EXPECT_EQ(calls_.fills, 0);
}

TEST_F(InterfaceListFailureTest, FailsWhenNothingIsNeeded) {
  calls_.needed = 0;
  expectFailure();
  EXPECT_EQ(calls_.fills, 0);
}

TEST_F(InterfaceListFailureTest, FailsAtTheCapAndNotJustBelow) {
  calls_.needed = 4'000'000;
  expectFailure();
  EXPECT_EQ(calls_.fills, 0);
  calls_.needed = 3'999'999;
  EXPECT_TRUE(InterfaceListReader::read(calls_).hasValue());
}

TEST_F(InterfaceListFailureTest, FailsWhenTheTableCannotBeRead) {
  calls_.needed = 160;
  calls_.fillFails = true;
  expectFailure();
}

}  // namespace
}  // namespace vantora
