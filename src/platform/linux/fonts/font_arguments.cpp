// SPDX-License-Identifier: MIT
#include "platform/linux/fonts/font_arguments.hpp"

#include <charconv>
#include <string_view>

namespace vantora {
namespace {

// A list begins with its name; each of its fonts has four values.
constexpr std::string_view interfaceList = "interface-fonts";
constexpr std::string_view monospacedList = "monospaced-fonts";
constexpr std::size_t valuesOfFont = 4;

void append(FontArguments& arguments, std::string_view name, const std::vector<FontFile>& files) {
  arguments.emplace_back(name);
  for (const FontFile& file : files) {
    arguments.insert(arguments.end(), {file.path, std::to_string(file.index), file.variations,
                                       std::to_string(file.missingWeight)});
  }
}

template <typename Number>
bool parse(std::string_view text, Number& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

}  // namespace

FontArguments toArguments(const FontSelection& selection) {
  FontArguments arguments;
  append(arguments, interfaceList, selection.text);
  append(arguments, monospacedList, selection.monospaced);
  return arguments;
}

std::optional<FontSelection> parseFonts(const FontArguments& arguments) {
  FontSelection selection;
  std::vector<FontFile>* files = nullptr;
  for (std::size_t place = 0; place < arguments.size();) {
    // No path is relative, so that none is taken for a list's name.
    if (arguments[place] == interfaceList || arguments[place] == monospacedList) {
      files = arguments[place] == interfaceList ? &selection.text : &selection.monospaced;
      ++place;
      continue;
    }
    if (files == nullptr || arguments.size() - place < valuesOfFont) {
      return std::nullopt;
    }
    FontFile file;
    file.path = arguments[place];
    file.variations = arguments[place + 2];
    if (!parse(arguments[place + 1], file.index) ||
        !parse(arguments[place + 3], file.missingWeight)) {
      return std::nullopt;
    }
    files->push_back(std::move(file));
    place += valuesOfFont;
  }
  return selection;
}

}  // namespace vantora
