// SPDX-License-Identifier: MIT
//
// The agent's decoder of the menu conversation: one line from the menu. What it accepts
// must come back the same from its own writer.
#include <cstdint>
#include <cstdlib>

#include "settings/conversation/menu_protocol.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace protocol = vantora::MenuProtocol;
  const auto answer = protocol::readAnswerLine({reinterpret_cast<const char*>(data), size});
  if (answer && protocol::readAnswerLine(protocol::answerLine(*answer)) != answer) {
    std::abort();
  }
  return 0;
}
