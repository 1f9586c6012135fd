// SPDX-License-Identifier: MIT
//
// The tool tip's decoder of the menu conversation: the agent's line. What it accepts must
// come back the same from its own writer.
#include <cstdint>
#include <cstdlib>

#include "settings/conversation/menu_protocol.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace protocol = vantora::MenuProtocol;
  const auto content = protocol::readToolTipLine({reinterpret_cast<const char*>(data), size});
  if (content && protocol::readToolTipLine(protocol::toolTipLine(*content)) != content) {
    std::abort();
  }
  return 0;
}
