// SPDX-License-Identifier: MIT
#include "app/print/print_output.hpp"

#include <poll.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace vantora {
namespace {

// ECMA-48 controls: erase the line (EL 2), one line up (CUU).
constexpr const char* eraseLine = "\x1b[2K";
constexpr const char* backToFirstLine = "\r\x1b[1A";

std::size_t terminalColumns(int descriptor) {
  constexpr std::size_t whenUnknown = 80;
  winsize size{};
  if (ioctl(descriptor, TIOCGWINSZ, &size) != 0 || size.ws_col == 0) {
    return whenUnknown;
  }
  return size.ws_col;
}

}  // namespace

int PrintOutput::print(const PrintReport& report) {
  rest_ = next(report);
  hasPrinted_ = true;
  return catchUp();
}

bool PrintOutput::hasReader() const {
  pollfd output{descriptor_, 0, 0};
  return poll(&output, 1, 0) != 1 || (output.revents & (POLLERR | POLLHUP)) == 0;
}

void PrintOutput::finish() {
  if (!hasPrinted_ || isBehind()) {
    return;
  }
  if (format_ == PrintFormat::i3bar) {
    rest_ = follow_ ? "[]]\n" : "]\n";
  } else if (format_ == PrintFormat::text && isTerminal_ && follow_) {
    rest_ = "\n";
  }
  // Nobody may be reading any more; there is nothing left to do about it.
  (void)catchUp();
}

std::string PrintOutput::next(const PrintReport& report) {
  switch (format_) {
    case PrintFormat::json:
      return PrintFormatter::jsonLine(report) + "\n";
    case PrintFormat::waybar:
      return PrintFormatter::waybarLine(report) + "\n";
    case PrintFormat::i3bar:
      return (hasPrinted_ ? "" : std::string(PrintFormatter::i3barHeader) + "\n") +
             PrintFormatter::i3barLine(report) + (follow_ ? ",\n" : "\n");
    case PrintFormat::text:
      break;
  }
  if (!isTerminal_) {
    return PrintFormatter::textLine(report) + "\n";
  }
  std::string lines = PrintFormatter::textColumns(report, terminalColumns(descriptor_));
  if (!follow_) {
    return lines + "\n";
  }
  lines.insert(lines.find('\n') + 1, eraseLine);
  return (hasPrinted_ ? backToFirstLine : "") + (eraseLine + lines);
}

int PrintOutput::catchUp() {
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
