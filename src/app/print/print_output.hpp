// SPDX-License-Identifier: MIT
//
// Where the lines of vantora-print go: a terminal, on which the list updates in place, or
// anything else, which gets whole lines.
#pragma once

#include <cstddef>
#include <string>

#include "app/print/print_options.hpp"
#include "app/print/print_report.hpp"

namespace vantora {

/// Writes to a descriptor that it does not own; on the main thread. A reader that does not
/// read blocks nothing: what it does not take is kept until catchUp().
class PrintOutput {
 public:
  /// `isTerminal`: whether the list may be drawn again in place with ECMA-48 controls.
  PrintOutput(int descriptor, PrintFormat format, bool follow, bool isTerminal)
      : descriptor_(descriptor), format_(format), follow_(follow), isTerminal_(isTerminal) {}

  /// 0, or why nothing could be written (errno(3)); EPIPE when the reader is gone. Not
  /// while isBehind().
  [[nodiscard]] int print(const PrintReport& report);

  /// Whether the reader has not yet taken all of what was printed.
  [[nodiscard]] bool isBehind() const { return !rest_.empty(); }

  /// Writes as much of the rest as the reader takes. Answers as print() does.
  [[nodiscard]] int catchUp();

  /// The terminal has another size, by which it may have broken its lines anew: the next
  /// print clears it and begins at its top. Returns whether that print is needed.
  [[nodiscard]] bool resized();

  /// Whether someone may still read: false once a pipe's reader is gone.
  [[nodiscard]] bool hasReader() const;

  /// Leaves the terminal's cursor on a line of its own and closes what print() opened. A
  /// reader that is behind gets no more.
  void finish();

 private:
  [[nodiscard]] std::string next(const PrintReport& report);
  [[nodiscard]] std::string nextList(const PrintReport& report);
  [[nodiscard]] bool isDrawnInPlace() const;

  int descriptor_;
  PrintFormat format_;
  bool follow_;
  bool isTerminal_;
  bool hasPrinted_ = false;
  bool isResized_ = false;
  std::size_t drawnLines_ = 0;  // the cursor is at the end of the last one
  std::string rest_;            // printed, but not written yet
};

}  // namespace vantora
