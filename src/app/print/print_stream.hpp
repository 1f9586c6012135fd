// SPDX-License-Identifier: MIT
//
// Where the lines of vantora-print go: a terminal, on which the list updates in place, or
// anything else, which gets whole lines.
#pragma once

#include <cstddef>
#include <string>

#include "app/print/print_options.hpp"
#include "app/print/print_output.hpp"

namespace vantora {

/// Writes to a descriptor that it does not own; on the main thread. A reader that does not
/// read blocks nothing: what it does not take is kept until catchUp().
class PrintStream final : public PrintOutput {
 public:
  /// `isTerminal`: whether the list may be drawn again in place with ECMA-48 controls;
  /// `readsClicks`: whether i3bar is told to write clicks.
  PrintStream(int descriptor, PrintFormat format, bool follow, bool isTerminal,
              bool readsClicks = false)
      : descriptor_(descriptor),
        format_(format),
        follow_(follow),
        isTerminal_(isTerminal),
        readsClicks_(readsClicks) {}

  [[nodiscard]] int print(const PrintReport& report) override;
  [[nodiscard]] bool isBehind() const override { return !rest_.empty(); }
  [[nodiscard]] int catchUp() override;

  /// The terminal may have broken its lines anew: the next print clears it and begins at its
  /// top.
  [[nodiscard]] bool resized() override;

  [[nodiscard]] bool hasReader() const override;

  /// Leaves the terminal's cursor on a line of its own and closes what print() opened. A
  /// reader that is behind gets no more.
  void finish() override;

 private:
  [[nodiscard]] std::string next(const PrintReport& report);
  [[nodiscard]] std::string nextList(const PrintReport& report);
  [[nodiscard]] bool isDrawnInPlace() const;

  int descriptor_;
  PrintFormat format_;
  bool follow_;
  bool isTerminal_;
  bool readsClicks_;
  bool hasPrinted_ = false;
  bool isResized_ = false;
  std::size_t drawnLines_ = 0;  // the cursor is at the end of the last one
  std::string rest_;            // printed, but not written yet
};

}  // namespace vantora
