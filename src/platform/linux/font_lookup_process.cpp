// SPDX-License-Identifier: MIT
#include "platform/linux/font_lookup_process.hpp"

#include <algorithm>
#include <charconv>
#include <string>
#include <string_view>
#include <vector>

#include "platform/linux/answer_apart.hpp"

namespace vantora {
namespace {

// A font is a letter and its four values, each ended by a zero byte.
constexpr char textMark = 't';
constexpr char monospacedMark = 'm';

void append(std::string& message, char mark, const std::vector<FontFile>& files) {
  for (const FontFile& file : files) {
    message += mark;
    for (const std::string& value : {file.path, std::to_string(file.index), file.variations,
                                     std::to_string(file.missingWeight)}) {
      message += value;
      message += '\0';
    }
  }
}

std::string_view takeValue(std::string_view& message) {
  const std::string_view value = message.substr(0, message.find('\0'));
  message.remove_prefix(std::min(value.size() + 1, message.size()));
  return value;
}

template <typename Number>
Number number(std::string_view text) {
  Number value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

FontSelection parse(std::string_view message) {
  FontSelection selection;
  while (!message.empty()) {
    std::vector<FontFile>& files =
        message.front() == textMark ? selection.text : selection.monospaced;
    message.remove_prefix(1);
    FontFile file;
    file.path = takeValue(message);
    file.index = number<long>(takeValue(message));
    file.variations = takeValue(message);
    file.missingWeight = number<int>(takeValue(message));
    files.push_back(file);
  }
  return selection;
}

std::string encode(const FontSelection& selection) {
  std::string message;
  append(message, textMark, selection.text);
  append(message, monospacedMark, selection.monospaced);
  return message;
}

}  // namespace

FontSelection lookUpApart(const std::function<FontSelection()>& lookUp,
                          std::chrono::milliseconds limit) {
  const auto message = answerApart([&lookUp] { return encode(lookUp()); }, limit);
  return message ? parse(*message) : FontSelection();
}

}  // namespace vantora
