// SPDX-License-Identifier: MIT
#include "platform/linux/text/font_report.hpp"

#include <algorithm>
#include <array>

#include "model/utf8.hpp"

namespace vantora {
namespace {

constexpr std::array<std::string FontReport::*, 4> members{
    &FontReport::text, &FontReport::monospaced, &FontReport::freetype, &FontReport::fontconfig};

}  // namespace

std::string encode(const FontReport& report) {
  std::string bytes;
  for (const auto member : members) {
    std::string line = report.*member;
    std::replace(line.begin(), line.end(), '\n', ' ');
    bytes += line + '\n';
  }
  return bytes;
}

std::optional<FontReport> parseFontReport(std::string_view bytes) {
  FontReport report;
  for (const auto member : members) {
    const std::size_t end = bytes.find('\n');
    if (end == std::string_view::npos) {
      return std::nullopt;
    }
    report.*member = repairedUtf8(bytes.substr(0, end));
    bytes.remove_prefix(end + 1);
  }
  return bytes.empty() ? std::optional(std::move(report)) : std::nullopt;
}

}  // namespace vantora
