// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace vantora::test {

/// What this program asks of the file system while the object lives, one line a call:
/// "create NAME" (only if there is none), "overwrite NAME", "flush NAME", "link FROM TO"
/// and "rename FROM TO", each with the file's name alone and a temporary file's as
/// "NAME.tmp". One object at a time; the calls of one thread.
class SystemCalls {
 public:
  SystemCalls();
  ~SystemCalls();
  SystemCalls(const SystemCalls&) = delete;
  SystemCalls& operator=(const SystemCalls&) = delete;

  [[nodiscard]] std::vector<std::string> take() { return std::exchange(lines_, {}); }

  /// From now on the call of this line is not made and fails with the error number.
  void fail(std::string line, int error) { failures_.emplace_back(std::move(line), error); }

  /// For the calls themselves: notes one; 0, or the error with which it is to fail.
  int note(const std::string& line);

 private:
  std::vector<std::string> lines_;
  std::vector<std::pair<std::string, int>> failures_;
};

}  // namespace vantora::test
