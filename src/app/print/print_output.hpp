// SPDX-License-Identifier: MIT
#pragma once

#include "app/print/print_report.hpp"

namespace vantora {

/// Where prints go: a stream or a file. Lives on the main thread. A slow reader never blocks it.
class PrintOutput {
 public:
  virtual ~PrintOutput() = default;

  /// 0, or why nothing could be written (errno(3)); EPIPE when the reader is gone. Not
  /// while isBehind().
  [[nodiscard]] virtual int print(const PrintReport& report) = 0;

  /// Whether the reader has not yet taken all of what was printed.
  [[nodiscard]] virtual bool isBehind() const = 0;

  /// Writes as much of the rest as the reader takes. Answers as print() does.
  [[nodiscard]] virtual int catchUp() = 0;

  /// The terminal has another size. Returns whether it needs another print.
  [[nodiscard]] virtual bool resized() = 0;

  /// Whether someone may still read: false once a pipe's reader is gone.
  [[nodiscard]] virtual bool hasReader() const = 0;

  /// Leaves nothing behind that is not whole or not true any more. Once, at the end.
  virtual void finish() = 0;
};

}  // namespace vantora
