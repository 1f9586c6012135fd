// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_client.hpp"

#include <linux/if_addr.h>
#include <linux/if_link.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <string>
#include <utility>

#include "platform/linux/network/rtnetlink_dump.hpp"

namespace vantora::Rtnetlink {
namespace {

// The kernel answers at once; this bounds the wait if it does not.
constexpr timeval answerTimeout{.tv_sec = 2, .tv_usec = 0};
// A table that changes faster than it is dumped is taken as it is.
constexpr int dumpAttempts = 3;

template <typename Request>
Bytes bytesOf(const Request& request) {
  return std::as_bytes(std::span(&request, 1));
}

template <typename Header>
struct Request {
  nlmsghdr message;
  Header header;
};

template <typename Header>
Request<Header> makeRequest(std::uint16_t type, int flags) {
  Request<Header> request{};
  request.message.nlmsg_len = sizeof request;
  request.message.nlmsg_type = type;
  request.message.nlmsg_flags = static_cast<std::uint16_t>(NLM_F_REQUEST | flags);
  return request;
}

Fault failure(const char* name, int error) {
  return Fault::failed("rtnetlink " + std::string(name) + " falhou: errno " +
                       std::to_string(error));
}

}  // namespace

Result<Dump> Client::dumpLinks() {
  // Without the counters of every device, which are not needed.
  struct {
    Request<ifinfomsg> request = makeRequest<ifinfomsg>(RTM_GETLINK, NLM_F_DUMP);
    rtattr attribute{.rta_len = sizeof(rtattr) + sizeof(std::uint32_t), .rta_type = IFLA_EXT_MASK};
    std::uint32_t mask = RTEXT_FILTER_SKIP_STATS;
  } full;
  full.request.message.nlmsg_len = sizeof full;
  return dump("RTM_GETLINK", bytesOf(full));
}

Result<Dump> Client::dumpAddresses() {
  return dump("RTM_GETADDR", bytesOf(makeRequest<ifaddrmsg>(RTM_GETADDR, NLM_F_DUMP)));
}

Result<Dump> Client::dumpRoutes(std::uint8_t family) {
  auto request = makeRequest<rtmsg>(RTM_GETROUTE, NLM_F_DUMP);
  request.header.rtm_family = family;
  request.header.rtm_table = RT_TABLE_MAIN;
  return dump("RTM_GETROUTE", bytesOf(request));
}

Result<NetworkCounters> Client::linkCounters(std::uint32_t index) {
  auto request = makeRequest<if_stats_msg>(RTM_GETSTATS, 0);
  request.header.ifindex = index;
  request.header.filter_mask = IFLA_STATS_FILTER_BIT(IFLA_STATS_LINK_64);

  std::array<std::byte, 1024> buffer;
  int error = send(bytesOf(request));
  while (error == 0) {
    std::size_t size = 0;
    error = receive(buffer, size);
    if (error != 0) {
      break;
    }
    const auto message = MessageReader(Bytes(buffer).first(size)).next();
    if (message && message->sequence != sequence_) {
      continue;
    }
    if (message) {
      if (const auto counters = parseLinkCounters(*message, index)) {
        return *counters;
      }
      error = message->type == NLMSG_ERROR ? parseError(*message) : 0;
    }
    if (error == 0) {
      error = EBADMSG;
    }
  }
  if (error == ENODEV) {
    return Fault::absent();
  }
  socket_.reset();
  return failure("RTM_GETSTATS", error);
}

Result<Dump> Client::dump(const char* name, Bytes request) {
  Outcome outcome;
  for (int attempt = 0; attempt < dumpAttempts; ++attempt) {
    outcome = dumpOnce(request);
    if (outcome.error != 0) {
      // What is left of this answer goes with its socket.
      socket_.reset();
      if (outcome.error != EMSGSIZE || bufferBytes_ >= DumpAssembler::cap) {
        return failure(name, outcome.error);
      }
    } else if (outcome.dump.isConsistent) {
      break;
    }
  }
  if (outcome.error != 0) {
    return failure(name, outcome.error);
  }
  return std::move(outcome.dump);
}

Client::Outcome Client::dumpOnce(Bytes request) {
  if (const int error = send(request); error != 0) {
    return {error, {}};
  }
  std::vector<std::byte> buffer(bufferBytes_);
  DumpAssembler assembler(sequence_);
  while (assembler.state() == DumpAssembler::State::open) {
    std::size_t size = 0;
    if (const int error = receive(buffer, size); error != 0) {
      if (error == EMSGSIZE) {
        bufferBytes_ = size;
      }
      return {error, {}};
    }
    assembler.take(Bytes(buffer).first(size));
  }
  if (assembler.state() == DumpAssembler::State::failed) {
    // ENOENT: the kernel makes a table of routes with its first route, and there is none yet.
    return {assembler.error() == ENOENT ? 0 : assembler.error(), {}};
  }
  return {0, {assembler.takeMessages(), !assembler.wasInterrupted()}};
}

int Client::open() {
  UniqueFd opened(::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC, NETLINK_ROUTE));
  if (!opened) {
    return errno;
  }
  if (::setsockopt(opened.get(), SOL_SOCKET, SO_RCVTIMEO, &answerTimeout, sizeof answerTimeout) !=
      0) {
    return errno;
  }
  // Lets a dump name the table it wants (Linux 4.20); without it the parser chooses.
  const int isStrict = 1;
  (void)::setsockopt(opened.get(), SOL_NETLINK, NETLINK_GET_STRICT_CHK, &isStrict, sizeof isStrict);
  socket_ = std::move(opened);
  return 0;
}

// Sends the request under a new sequence number.
int Client::send(Bytes request) {
  if (!socket_) {
    if (const int error = open(); error != 0) {
      return error;
    }
  }
  std::vector<std::byte> bytes(request.begin(), request.end());
  ++sequence_;
  std::memcpy(bytes.data() + offsetof(nlmsghdr, nlmsg_seq), &sequence_, sizeof sequence_);
  sockaddr_nl kernel{};
  kernel.nl_family = AF_NETLINK;
  const ssize_t sent = ::sendto(socket_.get(), bytes.data(), bytes.size(), 0,
                                reinterpret_cast<const sockaddr*>(&kernel), sizeof kernel);
  return sent < 0 ? errno : 0;
}

// One datagram of the kernel's into the buffer. EMSGSIZE when it has more bytes than the
// buffer; `size` is then how many.
int Client::receive(std::span<std::byte> buffer, std::size_t& size) const {
  while (true) {
    sockaddr_nl sender{};
    socklen_t senderSize = sizeof sender;
    const ssize_t received = ::recvfrom(socket_.get(), buffer.data(), buffer.size(), MSG_TRUNC,
                                        reinterpret_cast<sockaddr*>(&sender), &senderSize);
    if (received < 0) {
      if (errno == EINTR) {
        continue;
      }
      return errno;
    }
    if (sender.nl_pid != 0) {
      continue;  // Not from the kernel.
    }
    size = static_cast<std::size_t>(received);
    return size > buffer.size() ? EMSGSIZE : 0;
  }
}

}  // namespace vantora::Rtnetlink
