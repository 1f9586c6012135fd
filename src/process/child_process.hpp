// SPDX-License-Identifier: MIT
//
// A child process with its three standard streams, as its owner sees it: bytes go in,
// bytes and an exit come out. For line-based conversations use LineConversation.
//
// A launcher belongs to one queue. All calls are made on that queue's thread, and all
// events arrive on it, never inside a call. Nothing here blocks.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "model/result.hpp"

namespace vantora {

struct ChildProcessOptions {
  std::string executable;              ///< An absolute path; run directly, without a shell.
  std::vector<std::string> arguments;  ///< Without the program's own name.
  /// The child inherits this process's environment; these variables are added to it, or
  /// replace what it holds.
  std::map<std::string, std::string> environmentChanges;
  /// Created with its parents when missing, for the user alone (0700); that this failed
  /// is not an error of its own. Empty: the folder of this process.
  std::string workingDirectory;
  /// What the child sees as its own name, argv[0]. Empty: `executable`.
  std::string name = {};
};

struct ChildExit {
  std::int64_t status = 0;  ///< The exit status; 0 when a signal ended it.
  int signal = 0;           ///< The signal that ended it, 0 for an ordinary exit.
  bool operator==(const ChildExit&) const = default;
};

/// The events that the owner receives. Empty functions are allowed; their bytes are
/// read and dropped, so that the child never blocks on a full pipe. An event may end or
/// destroy the process that it is about.
struct ChildProcessEvents {
  /// Bytes of the child's standard output, never none. Valid during the call.
  std::function<void(std::string_view bytes)> onOutput;
  /// The end of standard output; at most once, nothing follows on that stream.
  std::function<void()> onOutputEnd;
  /// Bytes of the child's standard error, never none. Valid during the call.
  std::function<void(std::string_view bytes)> onErrorOutput;
  /// The child ended; at most once. What it had written to its output by then has been
  /// delivered before. A descendant of it may keep its streams open and go on writing.
  std::function<void(ChildExit exit)> onExit;
  /// What write() had accepted can no longer be delivered: the child closed its input.
  std::function<void()> onInputLost;
};

/// A started child. Destroying it terminates the child.
class ChildProcess {
 public:
  virtual ~ChildProcess() = default;

  /// The system's number of the child.
  [[nodiscard]] virtual std::int32_t id() const = 0;

  /// Sends `bytes` to the child's standard input. What the system does not take at once
  /// is kept and sent as the child reads. False when the input is closed, on either
  /// side; nothing was kept then. No signal is ever raised in this process.
  [[nodiscard]] virtual bool write(std::string_view bytes) = 0;

  /// Closes the child's standard input once everything that was written is delivered.
  virtual void closeInput() = 0;

  /// Ends the conversation: closes all three streams at once, asks the child politely
  /// to end and lets go of it. No event follows. A child that ignores the request is killed
  /// after a grace period, which nothing waits for. Calling it again does nothing.
  virtual void terminate() = 0;
};

class ChildProcessLauncher {
 public:
  virtual ~ChildProcessLauncher() = default;

  /// Starts a child. A fault says that it could not be started: absent when there is no
  /// such executable, else failed, also for a file that only a shell could run; no event
  /// follows a fault.
  [[nodiscard]] virtual Result<std::unique_ptr<ChildProcess>> start(
      const ChildProcessOptions& options, ChildProcessEvents events) = 0;
};

}  // namespace vantora
