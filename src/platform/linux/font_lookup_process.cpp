// SPDX-License-Identifier: MIT
#include "platform/linux/font_lookup_process.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <optional>
#include <string_view>

namespace vantora {
namespace {

// On the pipe a font is a letter and its four values, each ended by a zero byte. The
// last letter tells that nothing is missing, which the child's end cannot: it is not told
// to a process that was started with SIGCHLD ignored.
constexpr char textMark = 't';
constexpr char monospacedMark = 'm';
constexpr char endMark = '.';

void append(std::string& message, char mark, const std::vector<FontFile>& files) {
  for (const FontFile& file : files) {
    message += mark;
    for (const std::string& value : {file.path, std::to_string(file.index), file.variations,
                                     std::to_string(file.missingWeight)}) {
      message += value;
      message += '\0';
    }
  }
}

std::string_view takeValue(std::string_view& message) {
  const std::string_view value = message.substr(0, message.find('\0'));
  message.remove_prefix(std::min(value.size() + 1, message.size()));
  return value;
}

template <typename Number>
Number number(std::string_view text) {
  Number value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

FontSelection parse(std::string_view message) {
  FontSelection selection;
  if (message.empty() || message.back() != endMark) {
    return selection;
  }
  message.remove_suffix(1);
  while (!message.empty()) {
    std::vector<FontFile>& files =
        message.front() == textMark ? selection.text : selection.monospaced;
    message.remove_prefix(1);
    FontFile file;
    file.path = takeValue(message);
    file.index = number<long>(takeValue(message));
    file.variations = takeValue(message);
    file.missingWeight = number<int>(takeValue(message));
    files.push_back(file);
  }
  return selection;
}

bool writeAll(int descriptor, std::string_view message) {
  while (!message.empty()) {
    const ssize_t written = ::write(descriptor, message.data(), message.size());
    if (written < 0 && errno != EINTR) {
      return false;
    }
    message.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
  }
  return true;
}

/// What comes until the other end is closed; nothing when that takes longer than `limit`
/// between two pieces.
std::optional<std::string> readAll(int descriptor, std::chrono::milliseconds limit) {
  std::string message;
  std::array<char, 1024> buffer{};
  for (;;) {
    pollfd waiting{descriptor, POLLIN, 0};
    const int ready = ::poll(&waiting, 1, static_cast<int>(limit.count()));
    if (ready < 0 && errno == EINTR) {
      continue;
    }
    if (ready <= 0) {
      return std::nullopt;
    }
    const ssize_t length = ::read(descriptor, buffer.data(), buffer.size());
    if (length > 0) {
      message.append(buffer.data(), static_cast<std::size_t>(length));
    } else if (length == 0 || errno != EINTR) {
      return message;
    }
  }
}

}  // namespace

FontSelection lookUpApart(const std::function<FontSelection()>& lookUp,
                          std::chrono::milliseconds limit) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return lookUp();
  }
  const auto [readEnd, writeEnd] = ends;
  const pid_t child = ::fork();
  if (child < 0) {
    ::close(readEnd);
    ::close(writeEnd);
    return lookUp();
  }
  if (child == 0) {
    const FontSelection found = lookUp();
    std::string message;
    append(message, textMark, found.text);
    append(message, monospacedMark, found.monospaced);
    message += endMark;
    // No destructors and no flushing of what belongs to the parent.
    ::_exit(writeAll(writeEnd, message) ? 0 : 1);
  }
  ::close(writeEnd);
  const std::optional<std::string> message = readAll(readEnd, limit);
  ::close(readEnd);
  if (!message) {
    ::kill(child, SIGKILL);
  }
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  return message ? parse(*message) : FontSelection();
}

}  // namespace vantora
