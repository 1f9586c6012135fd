// SPDX-License-Identifier: MIT
//
// Strict reading of JSON, on top of the JSON library: nothing throws, depth is limited,
// and a member is read as exactly the type that is asked for. Include it only where a
// document is decoded; other headers name no JSON type.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace vantora {

using Json = nlohmann::json;

/// Deeper documents are refused: the JSON library writes and compares recursively, and
/// none of the formats read here nests ten levels.
inline constexpr int deepestJson = 512;

/// The document, or nothing when `text` is not one JSON value (RFC 8259, UTF-8), when a
/// number does not fit a double, or when it nests deeper than `deepestJson`. Of members
/// that stand twice the last one counts.
[[nodiscard]] std::optional<Json> parseJson(std::string_view text);

/// The compact text. `value` came from parseJson or holds valid UTF-8 only; nothing is
/// returned for other texts.
[[nodiscard]] std::optional<std::string> writeJson(const Json& value);

/// The member, or null when `object` is not an object or has no such member.
[[nodiscard]] const Json* member(const Json& object, std::string_view key);

/// As member(), but a JSON null counts as absent.
[[nodiscard]] const Json* presentMember(const Json& object, std::string_view key);

[[nodiscard]] std::optional<bool> asBool(const Json& value);
/// Any JSON number, widened to a double.
[[nodiscard]] std::optional<double> asDouble(const Json& value);
/// A number with an integral value that fits: 2 and 2.0 are integers, 1.5 is not.
[[nodiscard]] std::optional<std::int64_t> asInteger(const Json& value);
[[nodiscard]] std::optional<std::string> asText(const Json& value);

}  // namespace vantora
