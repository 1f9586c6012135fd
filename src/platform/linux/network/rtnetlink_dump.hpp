// SPDX-License-Identifier: MIT
//
// Puts the datagrams of an answered dump together. Bytes in, state out: the socket is
// the client's (rtnetlink_client.hpp).
#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "platform/linux/network/rtnetlink_message.hpp"

namespace vantora::Rtnetlink {

class DumpAssembler {
 public:
  enum class State : std::uint8_t {
    open,    ///< More datagrams are to come.
    done,    ///< messages() is the whole dump.
    failed,  ///< error() says why.
  };

  /// A dump must stay below this; no machine whose interfaces matter comes near.
  static constexpr std::size_t cap = 4'000'000;

  /// Messages of other sequences are passed over.
  explicit DumpAssembler(std::uint32_t sequence) : sequence_(sequence) {}

  State take(Bytes datagram);

  [[nodiscard]] State state() const { return state_; }
  /// The content messages, as they came; they are the caller's from then on. Only while
  /// done.
  [[nodiscard]] std::vector<std::byte> takeMessages() { return std::move(messages_); }
  /// Whether something changed while the kernel dumped, so that an entry may be missing.
  [[nodiscard]] bool wasInterrupted() const { return wasInterrupted_; }
  /// An errno. Only while failed.
  [[nodiscard]] int error() const { return error_; }

 private:
  State fail(int error);

  std::uint32_t sequence_;
  State state_ = State::open;
  std::vector<std::byte> messages_;
  bool wasInterrupted_ = false;
  int error_ = 0;
};

}  // namespace vantora::Rtnetlink
