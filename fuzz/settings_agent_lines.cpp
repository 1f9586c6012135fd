// SPDX-License-Identifier: MIT
//
// The window's end of the settings conversation: bytes from the agent, cut into lines. The
// first byte says in how large pieces they arrive.
#include <algorithm>
#include <cstdint>
#include <string_view>

#include "settings/conversation/window_model.hpp"

namespace {

class NoPanels final : public vantora::FilePanels {
  void chooseExport(const std::string&, Done) override {}
  void chooseImport(Done) override {}
  void chooseExecutable(const std::string&, Done) override {}
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size == 0) {
    return 0;
  }
  NoPanels panels;
  vantora::WindowModel model([](std::string_view) {}, panels);
  std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
  const std::size_t piece = std::size_t{data[0]} * 16 + 1;
  while (!bytes.empty() && model.receive(bytes.substr(0, piece))) {
    bytes.remove_prefix(std::min(piece, bytes.size()));
  }
  model.addModule();
  model.scrolled();
  return 0;
}
