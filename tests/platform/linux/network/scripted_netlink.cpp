// SPDX-License-Identifier: MIT
#include "platform/linux/network/scripted_netlink.hpp"

#include <linux/netlink.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

namespace vantora::test {
namespace {

ScriptedNetlink* scripted = nullptr;

ssize_t answer(void* buffer, size_t size, sockaddr* sender) {
  scripted->rooms.push_back(size);
  if (scripted->queue.empty()) {
    errno = EAGAIN;
    return -1;
  }
  const ScriptedNetlink::Datagram datagram = std::move(scripted->queue.front());
  scripted->queue.pop_front();
  if (datagram.error != 0) {
    errno = datagram.error;
    return -1;
  }
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_pid = datagram.sender;
  std::memcpy(sender, &address, sizeof address);
  std::copy_n(datagram.bytes.begin(), std::min(size, datagram.bytes.size()),
              static_cast<std::byte*>(buffer));
  return static_cast<ssize_t>(datagram.bytes.size());  // MSG_TRUNC: of the whole
}

}  // namespace

ScriptedNetlink::ScriptedNetlink() {
  scripted = this;
}
ScriptedNetlink::~ScriptedNetlink() {
  scripted = nullptr;
}

extern "C" {

// The names are the linker's.
// NOLINTBEGIN
int __real_socket(int domain, int type, int protocol);
ssize_t __real_sendto(int socket, const void* bytes, size_t size, int flags,
                      const sockaddr* address, socklen_t addressSize);
ssize_t __real_recvfrom(int socket, void* buffer, size_t size, int flags, sockaddr* address,
                        socklen_t* addressSize);

int __wrap_socket(int domain, int type, int protocol);
ssize_t __wrap_sendto(int socket, const void* bytes, size_t size, int flags,
                      const sockaddr* address, socklen_t addressSize);
ssize_t __wrap_recvfrom(int socket, void* buffer, size_t size, int flags, sockaddr* address,
                        socklen_t* addressSize);

int __wrap_socket(int domain, int type, int protocol) {
  if (scripted != nullptr) {
    ++scripted->sockets;
  }
  return __real_socket(domain, type, protocol);
}

ssize_t __wrap_sendto(int socket, const void* bytes, size_t size, int flags,
                      const sockaddr* address, socklen_t addressSize) {
  if (scripted == nullptr) {
    return __real_sendto(socket, bytes, size, flags, address, addressSize);
  }
  nlmsghdr question;
  std::memcpy(&question, bytes, sizeof question);
  ++scripted->questions;
  if (scripted->onQuestion) {
    scripted->onQuestion(question.nlmsg_seq);
  }
  return static_cast<ssize_t>(size);
}

ssize_t __wrap_recvfrom(int socket, void* buffer, size_t size, int flags, sockaddr* address,
                        socklen_t* addressSize) {
  return scripted != nullptr ? answer(buffer, size, address)
                             : __real_recvfrom(socket, buffer, size, flags, address, addressSize);
}
// NOLINTEND
}

}  // namespace vantora::test
