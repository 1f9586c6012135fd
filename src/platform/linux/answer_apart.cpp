// SPDX-License-Identifier: MIT
#include "platform/linux/answer_apart.hpp"

#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <string_view>

namespace vantora {
namespace {

// The last byte on the pipe. It tells that nothing is missing, which the child's end cannot:
// that is not told to a process that was started with SIGCHLD ignored.
constexpr char endMark = '.';

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

std::optional<std::string> answerApart(const std::function<std::string()>& question,
                                       std::chrono::milliseconds limit) {
  std::array<int, 2> ends{};
  if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
    return question();
  }
  const auto [readEnd, writeEnd] = ends;
  const pid_t child = ::fork();
  if (child < 0) {
    ::close(readEnd);
    ::close(writeEnd);
    return question();
  }
  if (child == 0) {
    // No destructors and no flushing of what belongs to the parent.
    ::_exit(writeAll(writeEnd, question() + endMark) ? 0 : 1);
  }
  ::close(writeEnd);
  std::optional<std::string> answer = readAll(readEnd, limit);
  ::close(readEnd);
  if (!answer) {
    ::kill(child, SIGKILL);
  }
  while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
  }
  if (!answer || !answer->ends_with(endMark)) {
    return std::nullopt;
  }
  answer->pop_back();
  return answer;
}

}  // namespace vantora
