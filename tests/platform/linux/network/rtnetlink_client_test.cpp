// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_client.hpp"

#include <gtest/gtest.h>
#include <linux/if_link.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "platform/linux/network/netlink_builder.hpp"
#include "platform/linux/network/scripted_netlink.hpp"

namespace vantora::test {
namespace {

using Rtnetlink::Client;

class RtnetlinkClientTest : public testing::Test {
 protected:
  // A link with a name of that many bytes.
  static std::vector<std::byte> link(std::uint32_t sequence, std::size_t nameBytes,
                                     std::uint16_t flags = 0) {
    ifinfomsg header{};
    header.ifi_index = 2;
    return NetlinkBuilder(sequence)
        .begin(RTM_NEWLINK, header, static_cast<std::uint16_t>(NLM_F_MULTI | flags))
        .addText(IFLA_IFNAME, std::string(nameBytes, 'e'))
        .bytes();
  }
  static std::vector<std::byte> ending(std::uint32_t sequence, std::uint16_t type, int error) {
    return NetlinkBuilder(sequence).begin(type, error, NLM_F_MULTI).bytes();
  }
  static std::vector<std::byte> counters(std::uint32_t sequence, std::uint64_t received,
                                         std::size_t bytes = sizeof(rtnl_link_stats64)) {
    if_stats_msg header{};
    header.ifindex = 7;
    rtnl_link_stats64 values{};
    values.rx_bytes = received;
    std::vector<std::byte> payload(std::max(bytes, sizeof values));
    std::memcpy(payload.data(), &values, sizeof values);
    return NetlinkBuilder(sequence)
        .begin(RTM_NEWSTATS, header)
        .add(IFLA_STATS_LINK_64, payload)
        .bytes();
  }
  // Answers each dump with one link and its end.
  void answerDumps(std::size_t nameBytes, std::uint16_t flags = 0) {
    kernel_.onQuestion = [this, nameBytes, flags](std::uint32_t sequence) {
      kernel_.queue.clear();
      kernel_.give(link(sequence, nameBytes, flags));
      kernel_.give(ending(sequence, NLMSG_DONE, 0));
    };
  }
  void answerWithError(int error) {
    kernel_.onQuestion = [this, error](std::uint32_t sequence) {
      kernel_.give(ending(sequence, NLMSG_ERROR, -error));
    };
  }

  ScriptedNetlink kernel_;
  Client client_;
};

TEST_F(RtnetlinkClientTest, AsksAgainWithRoomForAnAnswerThatIsLargerThanItsBuffer) {
  constexpr std::size_t nameBytes = 20'000;
  answerDumps(nameBytes);
  const auto links = client_.dumpLinks();
  ASSERT_TRUE(links.hasValue());
  ASSERT_EQ(Rtnetlink::parseLinks(links->messages).size(), 1U);
  EXPECT_EQ(Rtnetlink::parseLinks(links->messages)[0].name.size(), nameBytes);
  EXPECT_EQ(kernel_.questions, 2);
  // It keeps the larger buffer.
  EXPECT_TRUE(client_.dumpLinks().hasValue());
  EXPECT_EQ(kernel_.questions, 3);
}

TEST_F(RtnetlinkClientTest, GivesUpOnAnswersThatGrowEachTime) {
  std::size_t nameBytes = 10'000;
  kernel_.onQuestion = [&](std::uint32_t sequence) {
    kernel_.queue.clear();
    kernel_.give(link(sequence, nameBytes += 10'000));
  };
  const auto links = client_.dumpLinks();
  ASSERT_FALSE(links.hasValue());
  EXPECT_EQ(links.fault(),
            Fault::failed("rtnetlink RTM_GETLINK falhou: errno " + std::to_string(EMSGSIZE)));
  EXPECT_EQ(kernel_.questions, 3);
}

TEST_F(RtnetlinkClientTest, NamesTheQuestionAndTheErrnoOfAnError) {
  answerWithError(EPERM);
  EXPECT_EQ(client_.dumpLinks().fault().detail, "rtnetlink RTM_GETLINK falhou: errno 1");
  EXPECT_EQ(client_.dumpAddresses().fault().detail, "rtnetlink RTM_GETADDR falhou: errno 1");
  EXPECT_EQ(client_.dumpRoutes(AF_INET).fault().detail, "rtnetlink RTM_GETROUTE falhou: errno 1");
  EXPECT_EQ(client_.linkCounters(7).fault(),
            Fault::failed("rtnetlink RTM_GETSTATS falhou: errno 1"));
  EXPECT_EQ(kernel_.questions, 4);
}

TEST_F(RtnetlinkClientTest, TakesATableThatIsNotThereForAnEmptyOne) {
  kernel_.onQuestion = [this](std::uint32_t sequence) {
    kernel_.give(ending(sequence, NLMSG_DONE, -ENOENT));
  };
  const auto routes = client_.dumpRoutes(AF_INET);
  ASSERT_TRUE(routes.hasValue());
  EXPECT_TRUE(routes->messages.empty());
  EXPECT_TRUE(routes->isConsistent);
}

TEST_F(RtnetlinkClientTest, OpensANewSocketAfterAFault) {
  kernel_.fail(ENOBUFS);
  EXPECT_EQ(client_.dumpLinks().fault().detail,
            "rtnetlink RTM_GETLINK falhou: errno " + std::to_string(ENOBUFS));
  EXPECT_EQ(kernel_.sockets, 1);
  answerDumps(4);
  EXPECT_TRUE(client_.dumpLinks().hasValue());
  EXPECT_EQ(kernel_.sockets, 2);
  EXPECT_TRUE(client_.dumpLinks().hasValue());
  EXPECT_EQ(kernel_.sockets, 2);
}

TEST_F(RtnetlinkClientTest, DoesNotWaitForAnAnswerThatNeverComes) {
  EXPECT_EQ(client_.dumpLinks().fault().detail,
            "rtnetlink RTM_GETLINK falhou: errno " + std::to_string(EAGAIN));
  EXPECT_EQ(client_.linkCounters(7).fault().detail,
            "rtnetlink RTM_GETSTATS falhou: errno " + std::to_string(EAGAIN));
}

TEST_F(RtnetlinkClientTest, TakesADumpThatKeepsChangingAsItIsAtTheThirdAttempt) {
  answerDumps(4, NLM_F_DUMP_INTR);
  const auto links = client_.dumpLinks();
  ASSERT_TRUE(links.hasValue());
  EXPECT_FALSE(links->isConsistent);
  EXPECT_EQ(Rtnetlink::parseLinks(links->messages).size(), 1U);
  EXPECT_EQ(kernel_.questions, 3);
}

TEST_F(RtnetlinkClientTest, AcceptsMessagesOfTheKernelAlone) {
  kernel_.onQuestion = [this](std::uint32_t sequence) {
    kernel_.give(counters(sequence, 666), /*sender=*/4321);
    kernel_.give(counters(sequence, 100));
  };
  EXPECT_EQ(client_.linkCounters(7)->received, 100U);
}

TEST_F(RtnetlinkClientTest, TakesNoLateAnswerForAnother) {
  kernel_.onQuestion = [this](std::uint32_t sequence) {
    kernel_.give(counters(sequence - 1, 666));
    kernel_.give(counters(sequence, 100));
  };
  EXPECT_EQ(client_.linkCounters(7)->received, 100U);
}

TEST_F(RtnetlinkClientTest, GoesOnAfterASignal) {
  kernel_.onQuestion = [this](std::uint32_t sequence) {
    kernel_.fail(EINTR);
    kernel_.give(counters(sequence, 100));
  };
  EXPECT_EQ(client_.linkCounters(7)->received, 100U);
}

TEST_F(RtnetlinkClientTest, DistinguishesALinkThatIsGoneFromAFailureAndKeepsItsSocket) {
  answerWithError(ENODEV);
  EXPECT_EQ(client_.linkCounters(7).fault().kind, Fault::Kind::absent);
  EXPECT_EQ(client_.linkCounters(7).fault().kind, Fault::Kind::absent);
  EXPECT_EQ(kernel_.sockets, 1);
}

TEST_F(RtnetlinkClientTest, SaysThatCountersCannotBeReadWhereTheAnswerMakesNoSense) {
  const std::string unreadable = "rtnetlink RTM_GETSTATS falhou: errno " + std::to_string(EBADMSG);
  kernel_.give(std::vector<std::byte>(3));
  EXPECT_EQ(client_.linkCounters(7).fault().detail, unreadable);
  kernel_.give({});
  EXPECT_EQ(client_.linkCounters(7).fault().detail, unreadable);
  kernel_.onQuestion = [this](std::uint32_t sequence) { kernel_.give(counters(sequence, 5)); };
  EXPECT_EQ(client_.linkCounters(8).fault().detail, unreadable);  // of another link
  kernel_.onQuestion = [this](std::uint32_t sequence) {
    kernel_.give(counters(sequence, 5, 4000));
  };
  EXPECT_EQ(client_.linkCounters(7).fault().detail,
            "rtnetlink RTM_GETSTATS falhou: errno " + std::to_string(EMSGSIZE));
}

}  // namespace
}  // namespace vantora::test
