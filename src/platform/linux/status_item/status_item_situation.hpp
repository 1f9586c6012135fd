// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

namespace vantora {

/// Whether and why the item is not shown.
enum class StatusItemSituation : std::uint8_t {
  shown,   ///< A panel shows it.
  noHost,  ///< The session has no panel that shows status items.
  noBus,   ///< The session bus cannot be reached.
};

/// The situation in one line for a person, in Portuguese.
[[nodiscard]] std::string_view describe(StatusItemSituation situation);

}  // namespace vantora
