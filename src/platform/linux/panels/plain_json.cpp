// SPDX-License-Identifier: MIT
#include "platform/linux/panels/plain_json.hpp"

#include <algorithm>
#include <cstddef>

namespace vantora {
namespace {

/// Where the text that begins with the quote at `begin` ends, behind its closing quote.
std::size_t endOfText(std::string_view json, std::size_t begin) {
  for (std::size_t at = begin + 1; at < json.size(); ++at) {
    if (json[at] == '\\') {
      ++at;
    } else if (json[at] == '"') {
      return at + 1;
    }
  }
  return json.size();
}

/// Where the comment at `begin` ends; `begin` when there is none.
std::size_t endOfComment(std::string_view json, std::size_t begin) {
  const std::string_view opening = json.substr(begin, 2);
  if (opening == "//") {
    return std::min(json.find('\n', begin), json.size());
  }
  if (opening == "/*") {
    const std::size_t closing = json.find("*/", begin + 2);
    return closing == std::string_view::npos ? json.size() : closing + 2;
  }
  return begin;
}

bool isControl(char character) {
  return static_cast<unsigned char>(character) < ' ';
}

}  // namespace

std::string plainJson(std::string_view text) {
  std::string json(text);
  std::size_t comma = json.size();  // the latest with nothing but space behind it
  for (std::size_t at = 0; at < json.size();) {
    const auto begin = json.begin() + static_cast<std::ptrdiff_t>(at);
    std::size_t next = endOfComment(json, at);
    if (next > at) {
      std::fill(begin, json.begin() + static_cast<std::ptrdiff_t>(next), ' ');
      at = next;
      continue;
    }
    const char character = json[at];
    next = at + 1;
    if (character == '"') {
      next = endOfText(json, at);
      std::replace_if(begin, json.begin() + static_cast<std::ptrdiff_t>(next), isControl, ' ');
    } else if ((character == '}' || character == ']') && comma < json.size()) {
      json[comma] = ' ';
    }
    if (character == ',') {
      comma = at;
    } else if (character != ' ' && !isControl(character)) {
      comma = json.size();
    }
    at = next;
  }
  return json;
}

}  // namespace vantora
