// SPDX-License-Identifier: MIT
#include "process/exec_strings.hpp"

#include <string_view>
#include <utility>

extern char** environ;

namespace vantora {

char** ExecStrings::get() {
  pointers_.clear();
  for (std::string& text : texts_) {
    pointers_.push_back(text.data());
  }
  pointers_.push_back(nullptr);
  return pointers_.data();
}

ExecStrings environmentWith(const std::map<std::string, std::string>& changes) {
  ExecStrings result;
  for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
    const std::string_view text(*entry);
    if (!changes.contains(std::string(text.substr(0, text.find('='))))) {
      result.add(std::string(text));
    }
  }
  for (const auto& [name, value] : changes) {
    std::string entry = name;
    entry += '=';
    entry += value;
    result.add(std::move(entry));
  }
  return result;
}

}  // namespace vantora
