// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_dump.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

#include "platform/linux/network/netlink_builder.hpp"

namespace vantora {
namespace {

using Rtnetlink::DumpAssembler;
using test::NetlinkBuilder;
using State = DumpAssembler::State;

std::vector<std::byte> content(std::uint32_t value, std::uint16_t flags = NLM_F_MULTI,
                               std::uint32_t sequence = 1) {
  return NetlinkBuilder(sequence).begin(RTM_NEWLINK, value, flags).bytes();
}

std::vector<std::byte> ending(std::uint16_t type, std::int32_t error, std::uint32_t sequence = 1) {
  return NetlinkBuilder(sequence).begin(type, error, NLM_F_MULTI).bytes();
}

std::vector<std::byte> operator+(std::vector<std::byte> first,
                                 const std::vector<std::byte>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

TEST(RtnetlinkDump, PutsTheMessagesOfSeveralDatagramsTogether) {
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take(content(1) + content(2)), State::open);
  EXPECT_EQ(dump.take(content(3)), State::open);
  EXPECT_EQ(dump.take(ending(NLMSG_DONE, 0)), State::done);
  EXPECT_FALSE(dump.wasInterrupted());
  EXPECT_EQ(dump.takeMessages(), content(1) + content(2) + content(3));
}

TEST(RtnetlinkDump, EndsInTheMiddleOfADatagram) {
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take(content(1) + ending(NLMSG_DONE, 0) + content(2)), State::done);
  EXPECT_EQ(dump.takeMessages(), content(1));
}

TEST(RtnetlinkDump, PassesOverMessagesOfAnotherQuestion) {
  DumpAssembler dump(2);
  EXPECT_EQ(dump.take(content(1) + ending(NLMSG_DONE, 0) + ending(NLMSG_ERROR, -EPERM)),
            State::open);
  EXPECT_EQ(dump.take(content(5, NLM_F_MULTI, 2) + ending(NLMSG_DONE, 0, 2)), State::done);
  EXPECT_EQ(dump.takeMessages(), content(5, NLM_F_MULTI, 2));
}

TEST(RtnetlinkDump, FailsWithTheErrnoOfAnError) {
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take(ending(NLMSG_ERROR, -EOPNOTSUPP)), State::failed);
  EXPECT_EQ(dump.error(), EOPNOTSUPP);
}

TEST(RtnetlinkDump, FailsWithTheErrnoThatEndsADumpEarly) {
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take(content(1) + ending(NLMSG_DONE, -EMSGSIZE)), State::failed);
  EXPECT_EQ(dump.error(), EMSGSIZE);
}

TEST(RtnetlinkDump, TakesAnErrorOfZeroForAnAcknowledgement) {
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take(ending(NLMSG_ERROR, 0)), State::open);
  EXPECT_EQ(dump.take(ending(NLMSG_DONE, 0)), State::done);
}

TEST(RtnetlinkDump, KnowsThatTheKernelWasInterrupted) {
  DumpAssembler dump(1);
  dump.take(content(1, NLM_F_MULTI | NLM_F_DUMP_INTR) + content(2));
  dump.take(ending(NLMSG_DONE, 0));
  EXPECT_TRUE(dump.wasInterrupted());
}

TEST(RtnetlinkDump, PassesOverControlMessages) {
  DumpAssembler dump(1);
  dump.take(NetlinkBuilder().begin(NLMSG_NOOP, std::uint32_t{0}).bytes());
  dump.take(ending(NLMSG_DONE, 0));
  EXPECT_TRUE(dump.takeMessages().empty());
}

TEST(RtnetlinkDump, FailsOnADatagramThatEndsInAMessage) {
  auto cut = content(1) + content(2);
  cut.pop_back();
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take(cut), State::failed);
  EXPECT_EQ(dump.error(), EBADMSG);
}

TEST(RtnetlinkDump, StaysFailed) {
  DumpAssembler dump(1);
  dump.take(ending(NLMSG_ERROR, -EPERM));
  EXPECT_EQ(dump.take(ending(NLMSG_DONE, 0)), State::failed);
}

TEST(RtnetlinkDump, StaysOpenOverAnEmptyDatagram) {
  DumpAssembler dump(1);
  EXPECT_EQ(dump.take({}), State::open);
}

TEST(RtnetlinkDump, RefusesADumpWithoutEnd) {
  DumpAssembler dump(1);
  const std::vector<std::byte> filler(32'000);
  const auto big = NetlinkBuilder().begin(RTM_NEWLINK, std::uint32_t{0}).add(1, filler).bytes();
  std::size_t datagrams = 0;
  while (dump.take(big) == State::open) {
    ASSERT_LT(++datagrams * big.size(), DumpAssembler::cap);
  }
  EXPECT_EQ(dump.error(), EMSGSIZE);
}

}  // namespace
}  // namespace vantora
