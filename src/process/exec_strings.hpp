// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <vector>

namespace vantora {

/// The null-terminated arrays of strings that exec takes.
class ExecStrings {
 public:
  void add(std::string text) { texts_.push_back(std::move(text)); }

  /// Valid until the next call.
  [[nodiscard]] char** get();

 private:
  std::vector<std::string> texts_;
  std::vector<char*> pointers_;
};

/// This process's environment with `changes` added to it, or replacing what it holds.
[[nodiscard]] ExecStrings environmentWith(const std::map<std::string, std::string>& changes);

}  // namespace vantora
