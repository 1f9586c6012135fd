// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace vantora {

/// What vantora-glyphs draws with, for a person who looks for a fault.
struct FontReport {
  std::string text;        ///< Family and style of the texts; empty where no font fits.
  std::string monospaced;  ///< The same of the monospaced ones.
  std::string freetype;    ///< Versions of the libraries, those that run.
  std::string fontconfig;
  bool operator==(const FontReport&) const = default;
};

/// The one argument with which vantora-glyphs answers with this report.
inline constexpr const char* describeFontsOption = "--describe-fonts";

/// Four lines, in the members' order. Line feeds in a name become blanks.
[[nodiscard]] std::string encode(const FontReport& report);
/// Nothing for bytes that encode() does not make.
[[nodiscard]] std::optional<FontReport> parseFontReport(std::string_view bytes);

}  // namespace vantora
