// SPDX-License-Identifier: MIT
//
// Asks the kernel over rtnetlink(7). Used on one thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "model/result.hpp"
#include "platform/linux/network/rtnetlink_message.hpp"
#include "runtime/unique_fd.hpp"

namespace vantora::Rtnetlink {

/// The messages of a dump.
struct Dump {
  std::vector<std::byte> messages;
  /// False when the kernel's table kept changing, so that an entry may be missing.
  bool isConsistent = true;
};

/// Opens its socket at the first question and keeps it; after a fault it opens a new one,
/// so that no late answer is ever taken for another. A fault's detail names the question
/// and the errno ("rtnetlink RTM_GETLINK falhou: errno 105"), in Portuguese.
class Client {
 public:
  [[nodiscard]] Result<Dump> dumpLinks();
  [[nodiscard]] Result<Dump> dumpAddresses();
  /// Of AF_INET or AF_INET6, main table; older kernels dump every table.
  [[nodiscard]] Result<Dump> dumpRoutes(std::uint8_t family);

  /// The counters of one device. Absent when there is none of that index.
  [[nodiscard]] Result<NetworkCounters> linkCounters(std::uint32_t index);

 private:
  struct Outcome {
    int error = 0;  // an errno
    Dump dump;
  };
  Result<Dump> dump(const char* name, Bytes request);
  Outcome dumpOnce(Bytes request);
  int open();
  int send(Bytes request);
  int receive(std::span<std::byte> buffer, std::size_t& size) const;

  UniqueFd socket_;
  std::uint32_t sequence_ = 0;
  std::size_t bufferBytes_ = 8192;  // grows when the kernel answers with more
};

}  // namespace vantora::Rtnetlink
