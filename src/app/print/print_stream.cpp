// SPDX-License-Identifier: MIT
#include "app/print/print_stream.hpp"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <utility>
#include <vector>

#include "app/print/open_metrics.hpp"
#include "app/print/print_list.hpp"

namespace vantora {
namespace {

// ECMA-48 controls: erase the line (EL 2), what is below (ED), home (CUP), lines up (CUU).
constexpr const char* eraseLine = "\x1b[2K";
constexpr const char* eraseBelow = "\x1b[J";
constexpr const char* home = "\x1b[H";

std::string linesUp(std::size_t count) {
  return count == 0 ? "\r" : "\r\x1b[" + std::to_string(count) + "A";
}

struct TerminalSize {
  std::size_t columns = 80;
  std::size_t rows = 24;
};

TerminalSize terminalSize(int descriptor) {
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0 || size.ws_row == 0) {
    return {};
  }
  return {size.ws_col, size.ws_row};
}

// As many lines as the terminal can hold: the cursor does not go back to those that left it.
void cutToRows(std::vector<std::string>& lines, std::size_t rows) {
  if (lines.size() > rows) {
    const std::size_t kept = rows - 1;
    const std::string rest = "… e mais " + std::to_string(lines.size() - kept);
    lines.resize(kept);
    lines.push_back(rest);
  }
}

}  // namespace

int PrintStream::print(const PrintReport& report) {
  rest_ = next(report);
  hasPrinted_ = true;
  return catchUp();
}

bool PrintStream::hasReader() const {
  pollfd output{descriptor_, 0, 0};
  return poll(&output, 1, 0) != 1 || (output.revents & (POLLERR | POLLHUP)) == 0;
}

void PrintStream::finish() {
  if (!hasPrinted_ || isBehind()) {
    return;
  }
  if (format_ == PrintFormat::i3bar) {
    rest_ = follow_ ? "[]]\n" : "]\n";
  } else if (isDrawnInPlace()) {
    rest_ = "\n";
  }
  // The reader may be gone; there is nothing left to do about it.
  (void)catchUp();
}

std::string PrintStream::next(const PrintReport& report) {
  switch (format_) {
    case PrintFormat::json:
      return PrintFormatter::jsonLine(report) + "\n";
    case PrintFormat::waybar:
      return PrintFormatter::waybarLine(report) + "\n";
    case PrintFormat::i3bar:
      return (hasPrinted_ ? "" : std::string(PrintFormatter::i3barHeader(readsClicks_)) + "\n") +
             PrintFormatter::i3barLine(report) + (follow_ ? ",\n" : "\n");
    case PrintFormat::text:
      return PrintFormatter::textLine(report) + "\n";
    case PrintFormat::openMetrics:
      return OpenMetrics::text(report);
    case PrintFormat::list:
      break;
  }
  return nextList(report);
}

std::string PrintStream::nextList(const PrintReport& report) {
  const TerminalSize size = terminalSize(descriptor_);
  std::vector<std::string> lines =
      PrintFormatter::listLines(report, isTerminal_ ? size.columns : PrintFormatter::anyWidth);
  std::string text;
  if (!isDrawnInPlace()) {
    for (const std::string& line : lines) {
      text += line + "\n";
    }
    // A list that is followed ends with an empty line, so that a reader can tell them apart.
    return follow_ ? text + "\n" : text;
  }
  cutToRows(lines, size.rows);
  if (std::exchange(isResized_, false)) {
    text = std::string(home) + eraseBelow;
  } else if (drawnLines_ > 0) {
    text = linesUp(drawnLines_ - 1);
  }
  for (std::size_t index = 0; index < lines.size(); ++index) {
    text += (index > 0 ? "\n" : "") + (eraseLine + lines[index]);
  }
  drawnLines_ = lines.size();
  return text + eraseBelow;
}

bool PrintStream::isDrawnInPlace() const {
  return format_ == PrintFormat::list && isTerminal_ && follow_;
}

bool PrintStream::resized() {
  isResized_ = isDrawnInPlace() && hasPrinted_;
  return isResized_;
}

int PrintStream::catchUp() {
  while (!rest_.empty()) {
    pollfd output{descriptor_, POLLOUT, 0};
    if (poll(&output, 1, 0) == 0) {
      return 0;
    }
    // Where poll(2) finds room, this many bytes never block in a pipe (pipe(7)).
    const ssize_t count =
        ::write(descriptor_, rest_.data(), std::min(rest_.size(), std::size_t{PIPE_BUF}));
    if (count >= 0) {
      rest_.erase(0, static_cast<std::size_t>(count));
    } else if (errno == EAGAIN) {
      return 0;
    } else if (errno != EINTR) {
      return errno;
    }
  }
  return 0;
}

}  // namespace vantora
