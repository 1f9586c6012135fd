// SPDX-License-Identifier: MIT
#include "platform/linux/network/rtnetlink_dump.hpp"

#include <linux/netlink.h>

#include <cerrno>

namespace vantora::Rtnetlink {

DumpAssembler::State DumpAssembler::take(Bytes datagram) {
  MessageReader reader(datagram);
  while (state_ == State::open) {
    const auto message = reader.next();
    if (!message) {
      break;
    }
    if (message->sequence != sequence_) {
      continue;
    }
    wasInterrupted_ = wasInterrupted_ || (message->flags & NLM_F_DUMP_INTR) != 0;
    if (message->type == NLMSG_ERROR || message->type == NLMSG_DONE) {
      const int error = parseError(*message);
      if (error != 0) {
        return fail(error);
      }
      // An error of 0 is an acknowledgement, which ends nothing.
      if (message->type == NLMSG_DONE) {
        state_ = State::done;
      }
      continue;
    }
    if (message->type < NLMSG_MIN_TYPE) {
      continue;
    }
    const std::byte* begin = message->payload.data() - sizeof(nlmsghdr);
    const std::size_t size = message->payload.size() + sizeof(nlmsghdr);
    if (messages_.size() + size >= cap) {
      return fail(EMSGSIZE);
    }
    messages_.insert(messages_.end(), begin, begin + size);
    messages_.resize((messages_.size() + NLMSG_ALIGNTO - 1) / NLMSG_ALIGNTO * NLMSG_ALIGNTO);
  }
  if (state_ == State::open && !reader.isIntact()) {
    return fail(EBADMSG);
  }
  return state_;
}

DumpAssembler::State DumpAssembler::fail(int error) {
  error_ = error;
  state_ = State::failed;
  return state_;
}

}  // namespace vantora::Rtnetlink
