// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace vantora {

/// The word in the status bar for a status that every provider has. Texts that a value has are
/// not words: a status with a value that is too old reads "--".
template <typename Status>
[[nodiscard]] std::string sharedStatusWord(Status status) {
  switch (status) {
    case Status::disabled:
      return "OFF";
    case Status::dependencyMissing:
      return "CLI";
    case Status::connecting:
      return "...";
    case Status::needsAuthentication:
      return "LOGIN";
    case Status::unsupportedVersion:
      return "VERS";
    case Status::error:
      return "ERRO";
    default:
      return "--";
  }
}

}  // namespace vantora
