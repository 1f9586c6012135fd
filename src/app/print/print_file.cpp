// SPDX-License-Identifier: MIT
#include "app/print/print_file.hpp"

#include <cerrno>
#include <system_error>
#include <utility>

#include "app/print/open_metrics.hpp"
#include "settings/file_io.hpp"

namespace vantora {

PrintFile::PrintFile(std::filesystem::path path, bool follow,
                     std::function<void(const std::string& reason)> onFailure)
    : path_(std::move(path)), follow_(follow), onFailure_(std::move(onFailure)) {}

int PrintFile::print(const PrintReport& report) {
  std::string text = OpenMetrics::text(report);
  const auto reason = write(text);
  if (!reason) {
    return 0;
  }
  onFailure_(*reason);
  if (!follow_) {
    return EIO;
  }
  owed_ = std::move(text);
  return 0;
}

int PrintFile::catchUp() {
  if (!write(owed_)) {
    owed_.clear();
  }
  return 0;
}

// Nothing, or why it failed.
std::optional<std::string> PrintFile::write(const std::string& text) {
  FileIO::WriteOptions options;
  options.permissions = FileIO::Permissions::kept;
  options.flush = false;
  const auto fault = FileIO::replaceFile(path_, text, options);
  hasWritten_ = hasWritten_ || !fault;
  return fault ? std::optional(fault->detail) : std::nullopt;
}

void PrintFile::finish() {
  if (follow_ && hasWritten_) {
    std::error_code error;
    std::filesystem::remove(path_, error);
  }
}

}  // namespace vantora
