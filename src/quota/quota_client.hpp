// SPDX-License-Identifier: MIT
//
// One question to a command-line assistant, as its quota provider sees it: it starts, and it
// ends with exactly one result. A new question is a new client.
#pragma once

#include <string>

namespace vantora {

/// The results that every assistant can give. A provider's result is a variant of these and of
/// its own.
namespace quota_result {
/// The answer, as compact JSON. What it means is the provider's.
struct Answer {
  std::string json;
  bool operator==(const Answer&) const = default;
};
/// A Portuguese sentence for the user, with its full stop.
struct Failure {
  std::string text;
  bool operator==(const Failure&) const = default;
};
/// The assistant has no usable login.
struct NeedsAuthentication {
  bool operator==(const NeedsAuthentication&) const = default;
};
/// The installed version does not offer what is asked.
struct UnsupportedVersion {
  bool operator==(const UnsupportedVersion&) const = default;
};
/// The owner called cancel().
struct Cancelled {
  bool operator==(const Cancelled&) const = default;
};
}  // namespace quota_result

/// Created and used on the main thread. May be destroyed at any time, also inside its own
/// completion; its child process is then terminated all the same.
class QuotaClient {
 public:
  virtual ~QuotaClient() = default;

  /// Starts the child process; once. Returns at once and reports only through callbacks, none of
  /// which runs inside this call.
  virtual void start() = 0;

  /// Ends the question with Cancelled. Does nothing once a result is decided.
  virtual void cancel() = 0;
};

}  // namespace vantora
