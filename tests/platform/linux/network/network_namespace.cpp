// SPDX-License-Identifier: MIT
#include "platform/linux/network/network_namespace.hpp"

#include <arpa/inet.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <linux/if_link.h>
#include <linux/if_packet.h>
#include <linux/veth.h>
#include <net/if.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <vector>

#include "platform/linux/network/netlink_builder.hpp"
#include "platform/linux/network/rtnetlink_message.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora::test {
namespace {

constexpr int refusedStatus = 77;
constexpr int failedStatus = 1;

// Sends one request and fails the test unless the kernel acknowledges it.
void request(NetlinkBuilder& builder, const std::string& what) {
  const UniqueFd socket(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  const std::vector<std::byte>& bytes = builder.bytes();
  ASSERT_EQ(::send(socket.get(), bytes.data(), bytes.size(), 0),
            static_cast<ssize_t>(bytes.size()));
  std::array<std::byte, 4096> answer;
  const ssize_t size = ::recv(socket.get(), answer.data(), answer.size(), 0);
  ASSERT_GT(size, 0);
  const auto message =
      Rtnetlink::MessageReader(std::span(answer).first(static_cast<std::size_t>(size))).next();
  ASSERT_TRUE(message && message->type == NLMSG_ERROR);
  EXPECT_EQ(Rtnetlink::parseError(*message), 0) << what;
}

ifinfomsg linkHeader(std::uint32_t index) {
  ifinfomsg header{};
  header.ifi_index = static_cast<int>(index);
  return header;
}

constexpr std::uint16_t change = NLM_F_REQUEST | NLM_F_ACK;
constexpr std::uint16_t create = change | NLM_F_CREATE | NLM_F_EXCL;

bool write(const char* path, const std::string& text) {
  const UniqueFd file(::open(path, O_WRONLY | O_CLOEXEC));
  return ::write(file.get(), text.data(), text.size()) == static_cast<ssize_t>(text.size());
}

// As root at once; as another user through a user namespace, where the system has them.
bool enterNamespaces() {
  const std::string user = "0 " + std::to_string(::getuid()) + " 1";
  const std::string group = "0 " + std::to_string(::getgid()) + " 1";
  if (::unshare(CLONE_NEWNET | CLONE_NEWNS) != 0) {
    if (::unshare(CLONE_NEWUSER | CLONE_NEWNET | CLONE_NEWNS) != 0 ||
        !write("/proc/self/setgroups", "deny") || !write("/proc/self/uid_map", user) ||
        !write("/proc/self/gid_map", group)) {
      return false;
    }
  }
  return ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

int runInChild(const std::string& sysfsRoot,
               const std::function<void(const NetworkNamespace&)>& body) {
  if (!enterNamespaces() || ::mount("sysfs", sysfsRoot.c_str(), "sysfs", 0, nullptr) != 0) {
    return refusedStatus;
  }
  body(NetworkNamespace(sysfsRoot));
  return testing::Test::HasFailure() ? failedStatus : 0;
}

}  // namespace

void NetworkNamespace::addPair(const std::string& name, std::uint32_t index) const {
  // IFLA_LINKINFO { IFLA_INFO_KIND, IFLA_INFO_DATA { VETH_INFO_PEER { header, name } } }
  const auto attribute = [](std::uint16_t type, const std::vector<std::byte>& payload) {
    const NetlinkBuilder builder = NetlinkBuilder().begin(0, std::uint32_t{0}).add(type, payload);
    constexpr std::size_t before = sizeof(nlmsghdr) + sizeof(std::uint32_t);
    return std::vector<std::byte>(builder.bytes().begin() + before, builder.bytes().end());
  };
  const std::string peerName = name + "p";
  const NetlinkBuilder peerBuilder =
      NetlinkBuilder().begin(0, linkHeader(0)).addText(IFLA_IFNAME, peerName);
  const std::vector<std::byte> peer(peerBuilder.bytes().begin() + sizeof(nlmsghdr),
                                    peerBuilder.bytes().end());
  const std::array<std::byte, 4> kindText{std::byte{'v'}, std::byte{'e'}, std::byte{'t'},
                                          std::byte{'h'}};
  std::vector<std::byte> info = attribute(IFLA_INFO_KIND, {kindText.begin(), kindText.end()});
  const std::vector<std::byte> data = attribute(IFLA_INFO_DATA, attribute(VETH_INFO_PEER, peer));
  info.insert(info.end(), data.begin(), data.end());
  NetlinkBuilder builder;
  builder.begin(RTM_NEWLINK, linkHeader(index), create)
      .addText(IFLA_IFNAME, name)
      .add(IFLA_LINKINFO, info);
  request(builder, "add " + name);
  setUp(peerName, true);
}

void NetworkNamespace::addBridge(const std::string& name, const std::string& port) const {
  NetlinkBuilder builder;
  builder.begin(RTM_NEWLINK, linkHeader(0), create)
      .addText(IFLA_IFNAME, name)
      .addNestedText(IFLA_LINKINFO, IFLA_INFO_KIND, "bridge");
  request(builder, "add " + name);
  setUp(name, true);
  NetlinkBuilder enslaving;
  enslaving.begin(RTM_NEWLINK, linkHeader(::if_nametoindex(port.c_str())), change)
      .addNumber(IFLA_MASTER, ::if_nametoindex(name.c_str()));
  request(enslaving, "add the port " + port);
}

void NetworkNamespace::remove(const std::string& name) const {
  NetlinkBuilder builder;
  builder.begin(RTM_DELLINK, linkHeader(::if_nametoindex(name.c_str())), change);
  request(builder, "remove " + name);
}

void NetworkNamespace::setUp(const std::string& name, bool isUp) const {
  ifinfomsg header = linkHeader(::if_nametoindex(name.c_str()));
  header.ifi_flags = isUp ? IFF_UP : 0;
  header.ifi_change = IFF_UP;
  NetlinkBuilder builder;
  builder.begin(RTM_NEWLINK, header, change);
  request(builder, "set up " + name);
}

void NetworkNamespace::rename(const std::string& name, const std::string& newName) const {
  NetlinkBuilder builder;
  builder.begin(RTM_NEWLINK, linkHeader(::if_nametoindex(name.c_str())), change)
      .addText(IFLA_IFNAME, newName);
  request(builder, "rename " + name);
}

void NetworkNamespace::addAddress(const std::string& name, const std::string& address) const {
  ifaddrmsg header{};
  header.ifa_index = ::if_nametoindex(name.c_str());
  std::array<std::byte, sizeof(in6_addr)> bytes{};
  std::size_t size = sizeof(in_addr);
  header.ifa_family = AF_INET;
  header.ifa_prefixlen = 24;
  if (::inet_pton(AF_INET, address.c_str(), bytes.data()) != 1) {
    ASSERT_EQ(::inet_pton(AF_INET6, address.c_str(), bytes.data()), 1) << address;
    size = sizeof(in6_addr);
    header.ifa_family = AF_INET6;
    header.ifa_prefixlen = 64;
    header.ifa_flags = IFA_F_NODAD;
  }
  NetlinkBuilder builder;
  builder.begin(RTM_NEWADDR, header, create)
      .add(IFA_LOCAL, std::span(bytes).first(size))
      .add(IFA_ADDRESS, std::span(bytes).first(size));
  request(builder, "add " + address);
}

void NetworkNamespace::addDefaultRoute(const std::string& name, std::uint32_t metric,
                                       bool isIPv6) const {
  rtmsg header{};
  header.rtm_family = isIPv6 ? AF_INET6 : AF_INET;
  header.rtm_table = RT_TABLE_MAIN;
  header.rtm_protocol = RTPROT_BOOT;
  header.rtm_scope = RT_SCOPE_LINK;
  header.rtm_type = RTN_UNICAST;
  NetlinkBuilder builder;
  builder.begin(RTM_NEWROUTE, header, create)
      .addNumber(RTA_OIF, ::if_nametoindex(name.c_str()))
      .addNumber(RTA_PRIORITY, metric);
  request(builder, "route by " + name);
}

void NetworkNamespace::send(const std::string& name, std::size_t bytes) const {
  const UniqueFd socket(::socket(AF_PACKET, SOCK_RAW | SOCK_CLOEXEC, 0));
  sockaddr_ll link{};
  link.sll_family = AF_PACKET;
  link.sll_ifindex = static_cast<int>(::if_nametoindex(name.c_str()));
  // Broadcast, of an experimental type (IEEE 802) that no host answers.
  std::vector<std::uint8_t> frame(bytes, 0);
  std::fill_n(frame.begin(), 6, std::uint8_t{0xFF});
  frame[12] = 0x88;
  frame[13] = 0xB5;
  const std::string peer = name.ends_with('p') ? name.substr(0, name.size() - 1) : name + "p";
  const std::string counter = sysfsRoot_ + "/class/net/" + peer + "/statistics/rx_bytes";
  const auto received = [&] {
    std::uint64_t count = 0;
    std::ifstream(counter) >> count;
    return count;
  };
  const std::uint64_t before = received();
  EXPECT_EQ(::sendto(socket.get(), frame.data(), frame.size(), 0,
                     reinterpret_cast<const sockaddr*>(&link), sizeof link),
            static_cast<ssize_t>(bytes))
      << std::strerror(errno);
  // The kernel delivers it in a soft interrupt, at once or when the machine is less busy.
  const auto giveUp = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (received() < before + bytes && std::chrono::steady_clock::now() < giveUp) {
    ::sched_yield();
  }
}

void inNetworkNamespace(const std::function<void(const NetworkNamespace&)>& body) {
  std::string root = (std::filesystem::temp_directory_path() / "vantora-netns-XXXXXX").string();
  ASSERT_NE(::mkdtemp(root.data()), nullptr);
  (void)std::fflush(nullptr);
  const pid_t child = ::fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    const int status = runInChild(root, body);
    (void)std::fflush(nullptr);
    ::_exit(status);
  }
  int status = 0;
  while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
  }
  std::filesystem::remove(root);
  if (WIFEXITED(status) && WEXITSTATUS(status) == refusedStatus) {
    GTEST_SKIP() << "this system refuses network namespaces to the tests";
  }
  EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0)
      << "the child process failed: see above";
}

}  // namespace vantora::test
