// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QSocketNotifier>
#include <functional>
#include <string_view>

namespace vantora {

/// The program's standard input and output as the settings conversation uses them. Nothing
/// blocks: what the agent does not take at once waits here.
class StandardStreams {
 public:
  StandardStreams(int input, int output);

  /// Bytes arrived, never none.
  std::function<void(std::string_view bytes)> onInput;
  /// The agent closed the conversation, or it cannot go on. At most once.
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
