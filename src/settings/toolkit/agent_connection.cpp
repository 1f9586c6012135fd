// SPDX-License-Identifier: MIT
#include "settings/toolkit/agent_connection.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>

namespace vantora {
namespace {

void stopBlocking(int descriptor) {
  const int flags = ::fcntl(descriptor, F_GETFL);
  (void)::fcntl(descriptor, F_SETFL, flags | O_NONBLOCK);
}

bool isTemporary(int error) {
  return error == EAGAIN || error == EWOULDBLOCK || error == EINTR;
}

}  // namespace

AgentConnection::AgentConnection(int input, int output)
    : readable_(input, QSocketNotifier::Read), writable_(output, QSocketNotifier::Write) {
  stopBlocking(input);
  stopBlocking(output);
  writable_.setEnabled(false);
  QObject::connect(&readable_, &QSocketNotifier::activated, &readable_, [this] { readSome(); });
  QObject::connect(&writable_, &QSocketNotifier::activated, &writable_, [this] { writeSome(); });
}

void AgentConnection::write(std::string_view bytes) {
  if (!hasEnded_) {
    waiting_.append(bytes.data(), static_cast<qsizetype>(bytes.size()));
    writeSome();
  }
}

void AgentConnection::readSome() {
  std::array<char, 65536> buffer;
  const ssize_t count = ::read(static_cast<int>(readable_.socket()), buffer.data(), buffer.size());
  if (count > 0) {
    if (onInput) {
      onInput({buffer.data(), static_cast<std::size_t>(count)});
    }
  } else if (count == 0 || !isTemporary(errno)) {
    end();
  }
}

void AgentConnection::writeSome() {
  while (!waiting_.isEmpty()) {
    const ssize_t count = ::write(static_cast<int>(writable_.socket()), waiting_.constData(),
                                  static_cast<std::size_t>(waiting_.size()));
    if (count < 0) {
      if (!isTemporary(errno)) {
        end();
        return;
      }
      break;
    }
    waiting_.remove(0, static_cast<qsizetype>(count));
  }
  writable_.setEnabled(!waiting_.isEmpty());
}

void AgentConnection::end() {
  readable_.setEnabled(false);
  writable_.setEnabled(false);
  waiting_.clear();
  if (!hasEnded_) {
    hasEnded_ = true;
    QMetaObject::invokeMethod(
        &readable_,
        [this] {
          if (onEnd) {
            onEnd();
          }
        },
        Qt::QueuedConnection);
  }
}

}  // namespace vantora
