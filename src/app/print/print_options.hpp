// SPDX-License-Identifier: MIT
//
// The command line of vantora-print.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "model/time.hpp"

namespace vantora {

enum class PrintFormat : std::uint8_t { text, json, i3bar, waybar };

struct PrintOptions {
  /// How long a single print may wait for its readings when nothing else is said.
  static constexpr Seconds defaultTimeout{60};

  bool follow = false;  ///< A line at every change instead of one print.
  PrintFormat format = PrintFormat::text;
  /// The longest wait of a single print. When following: end after it, if `hasTimeout`.
  Seconds timeout = defaultTimeout;
  bool hasTimeout = false;  ///< Whether the user gave the timeout.
};

/// The program ends at once: help that was asked for (status 0, standard output), or a
/// line that says what is wrong (status 2, standard error).
struct PrintExit {
  int status = 0;
  std::string text;
};

[[nodiscard]] std::variant<PrintOptions, PrintExit> parsePrintOptions(int argc,
                                                                      const char* const* argv);

}  // namespace vantora
