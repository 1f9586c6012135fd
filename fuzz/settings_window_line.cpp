// SPDX-License-Identifier: MIT
//
// The agent's decoder of the settings conversation: one line from the window. What it
// accepts must come back the same from its own writer.
#include <cstdint>
#include <cstdlib>

#include "settings/conversation/settings_protocol.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace protocol = vantora::SettingsProtocol;
  const auto message = protocol::readWindowLine({reinterpret_cast<const char*>(data), size});
  if (message) {
    const auto line = protocol::windowLine(*message);
    const auto again = line ? protocol::readWindowLine(*line) : std::nullopt;
    if (!again || again->index() != message->index()) {
      std::abort();
    }
  }
  return 0;
}
