// SPDX-License-Identifier: MIT
//
// The reader of the desktop's autostart files.
#include <cstdint>
#include <string_view>

#include "platform/linux/desktop/desktop_entry.hpp"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace entry = vantora::DesktopEntry;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  if (const auto keys = entry::parse(text)) {
    (void)entry::startOf(*keys, {"GNOME"}, [](const std::string& name) { return !name.empty(); });
  }
  (void)entry::parse(entry::autostartFile(text));
  return 0;
}
