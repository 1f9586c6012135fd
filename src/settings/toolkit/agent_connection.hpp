// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>
#include <string_view>

namespace vantora {

/// The agent, on the program's standard input and output. Nothing blocks: what the agent
/// does not take at once waits here.
class AgentConnection {
 public:
  AgentConnection(int input, int output);

  /// Bytes arrived, never none.
  std::function<void(std::string_view bytes)> onInput;
  /// The agent closed the conversation, or it cannot go on. At most once, from the event
  /// loop: a loop that has not begun ignores a request to quit.
  std::function<void()> onEnd;

  void write(std::string_view bytes);

 private:
  void readSome();
  void writeSome();
  void end();

  QSocketNotifier readable_;
  QSocketNotifier writable_;
  QByteArray waiting_;
  bool hasEnded_ = false;
};

}  // namespace vantora
