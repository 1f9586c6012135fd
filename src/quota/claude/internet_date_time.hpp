// SPDX-License-Identifier: MIT
//
// The internet date-time form of ISO 8601 (RFC 3339), strictly.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace vantora {

/// The instant in seconds since 1970-01-01T00:00:00Z, of exactly "YYYY-MM-DDThh:mm:ss"
/// followed by "Z" or an offset "+hh:mm" or "-hh:mm"; nothing for any other text, for a
/// day that the calendar does not have, and for an hour or minute that no clock shows.
/// No fraction of a second. A leap second ("23:59:60") is refused: seconds since 1970
/// do not count them.
[[nodiscard]] std::optional<std::int64_t> unixTimeFromInternetDateTime(std::string_view text);

}  // namespace vantora
