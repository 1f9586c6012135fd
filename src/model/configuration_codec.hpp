// SPDX-License-Identifier: MIT
//
// The configuration as a JSON document. Decoding is strict: a missing required key, a
// value of the wrong JSON type or an unknown enumeration text fails the whole document.
// Unknown keys pass, and null under an optional key is absence. Nothing throws.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "model/configuration.hpp"

namespace vantora::ConfigurationCodec {

/// The compact document. Absent optional values are left out. Nothing when a text of
/// the configuration is not UTF-8 or a number is not finite: JSON can write neither.
[[nodiscard]] std::optional<std::string> encode(const AppConfiguration& configuration);

/// What the document says, which may still fail validated().
[[nodiscard]] std::optional<AppConfiguration> decode(std::string_view document);

}  // namespace vantora::ConfigurationCodec
