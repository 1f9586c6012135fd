// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// Opens a page in the user's browser. Main thread.
class UrlOpener {
 public:
  virtual ~UrlOpener() = default;

  /// Hands the address to the desktop's default handler and returns at once. `url` was
  /// validated by who asks. A desktop without a handler leaves the user where they are.
  virtual void open(const std::string& url) = 0;
};

}  // namespace vantora
