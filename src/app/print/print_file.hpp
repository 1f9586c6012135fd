// SPDX-License-Identifier: MIT
//
// A file that holds the newest readings, for node_exporter's textfile collector.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "app/print/print_output.hpp"

namespace vantora {

/// Replaces the file whole at each print. A reader finds the file before or the new one,
/// never a part. The content is not flushed: it means nothing after a restart of the machine.
class PrintFile final : public PrintOutput {
 public:
  /// `onFailure` gets the reason, in Portuguese, when a print fails after one that did not.
  PrintFile(std::filesystem::path path, bool follow,
            std::function<void(const std::string& reason)> onFailure);

  /// EIO when a single print fails. One that follows goes on: the file stays as it was, and
  /// catchUp() tries again.
  [[nodiscard]] int print(const PrintReport& report) override;

  [[nodiscard]] bool isBehind() const override { return !owed_.empty(); }
  [[nodiscard]] int catchUp() override;
  [[nodiscard]] bool resized() override { return false; }
  [[nodiscard]] bool hasReader() const override { return true; }

  /// Removes a file that was followed: a stale file would pass for a current reading.
  void finish() override;

 private:
  [[nodiscard]] std::optional<std::string> write(const std::string& text);

  std::filesystem::path path_;
  bool follow_;
  std::function<void(const std::string&)> onFailure_;
  bool hasWritten_ = false;
  std::string owed_;  // what could not be written
};

}  // namespace vantora
