// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace vantora {

/// An edit that replaces or removes what the user cannot type again: it can be undone until
/// the next edit.
enum class UndoableEdit : std::uint8_t { removal, importing, restoring };

}  // namespace vantora
