// SPDX-License-Identifier: MIT
//
// What the agent and vantora-glyphs say to each other: a request is the program's arguments,
// the reply is what it writes to its standard output. Both are of one build, so that the
// bytes are the machine's own.
#pragma once

#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/text/glyph_source.hpp"

namespace vantora {

/// Arguments that name the fonts to draw with, in the words of vantora-glyphs. Empty: it
/// looks up the user's.
using FontArguments = std::vector<std::string>;

struct GlyphOrder {
  GlyphRequest request;
  FontArguments fonts;
};
[[nodiscard]] std::vector<std::string> toArguments(const GlyphOrder& order);
/// Nothing for arguments that toArguments() does not make.
[[nodiscard]] std::optional<GlyphOrder> parseGlyphOrder(std::span<const std::string> arguments);

struct GlyphReply {
  /// Those that were drawn with, for the next request.
  FontArguments fonts;
  GlyphAnswer answer;
};
[[nodiscard]] std::string encode(const GlyphReply& reply);
/// Nothing for bytes that encode() does not make.
[[nodiscard]] std::optional<GlyphReply> parseGlyphReply(std::string_view bytes);

}  // namespace vantora
