// SPDX-License-Identifier: MIT
//
// A kernel that answers rtnetlink questions as a test says, also as the real one hardly
// ever does. The linker puts it in the place of the C library's calls (-Wl,--wrap).
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <utility>
#include <vector>

namespace vantora::test {

/// One at a time; it answers while it lives.
class ScriptedNetlink {
 public:
  ScriptedNetlink();
  ~ScriptedNetlink();
  ScriptedNetlink(const ScriptedNetlink&) = delete;
  ScriptedNetlink& operator=(const ScriptedNetlink&) = delete;

  /// What waits in the socket. After the last one it has nothing more (EAGAIN).
  void give(std::vector<std::byte> datagram, std::uint32_t sender = 0) {
    queue.push_back({std::move(datagram), sender, 0});
  }
  void fail(int error) { queue.push_back({{}, 0, error}); }

  /// Called with the sequence number of each question, before it waits for answers.
  std::function<void(std::uint32_t sequence)> onQuestion;
  int questions = 0;
  int sockets = 0;                 ///< That were opened.
  std::vector<std::size_t> rooms;  ///< Of the buffers that answers were asked into.

  struct Datagram {
    std::vector<std::byte> bytes;
    std::uint32_t sender = 0;
    int error = 0;
  };
  std::deque<Datagram> queue;
};

}  // namespace vantora::test
