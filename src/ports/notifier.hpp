// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// Messages for a user who has no window of ours open. Main thread.
class Notifier {
 public:
  virtual ~Notifier() = default;

  /// Shows the message, plain text, once. Returns at once; a desktop that shows no
  /// notifications drops it.
  virtual void notify(const std::string& message) = 0;
};

}  // namespace vantora
