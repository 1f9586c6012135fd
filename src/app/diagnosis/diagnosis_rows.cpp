// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis_rows.hpp"

#include <utility>

#include "app/cells.hpp"
#include "model/utf8.hpp"

namespace vantora {
namespace {

constexpr std::size_t groupWidth = 13;
constexpr std::size_t gap = 2;
constexpr std::size_t aboutWidth = DiagnosisRows::maxAbout + gap;

// The text in a column of that width, with a gap behind it.
std::string cell(const std::string& text, std::size_t width) {
  const std::size_t most = width - gap;
  std::string shown = cellCount(text) <= most ? text : cutToCells(text, most - 1).append("…");
  return shown.append(width - cellCount(shown), ' ');
}

// Takes the words off that fit into a line; a longer word is cut.
std::string takeLine(std::string& rest, std::size_t width) {
  if (cellCount(rest) <= width) {
    return std::exchange(rest, {});
  }
  std::string line = cutToCells(rest, width);
  const std::size_t blank = rest[line.size()] == ' ' ? line.size() : line.rfind(' ');
  if (blank != std::string::npos && blank > 0) {
    line.resize(blank);
  }
  rest.erase(0, line.size());
  rest.erase(0, rest.find_first_not_of(' '));
  return line;
}

}  // namespace

void DiagnosisRows::add(std::string_view about, std::string_view text) {
  std::string rest = conceal_(repairedUtf8(text));
  if (rest.empty()) {
    return;
  }
  std::string start =
      cell(std::exchange(group_, {}), groupWidth) + cell(conceal_(repairedUtf8(about)), aboutWidth);
  const std::size_t width = columns_ - groupWidth - aboutWidth;
  while (!rest.empty()) {
    text_ += start + takeLine(rest, width) + '\n';
    start.assign(groupWidth + aboutWidth, ' ');
  }
}

}  // namespace vantora
