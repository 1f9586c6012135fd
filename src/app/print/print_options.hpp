// SPDX-License-Identifier: MIT
//
// The command line of vantora-print.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "app/program_answer.hpp"
#include "model/time.hpp"

namespace vantora {

enum class PrintFormat : std::uint8_t {
  list,  ///< A line for each metric: for people.
  text,  ///< One line with everything: for bars and scripts.
  json,
  i3bar,
  waybar,
  openMetrics,  ///< Every reading as a gauge for Prometheus.
};

/// What is printed.
enum class PrintTask : std::uint8_t {
  readings,
  diagnosis,
  diagnosisAsJson,
};

struct PrintOptions {
  /// How long a single print may wait for its readings when nothing else is said.
  static constexpr Seconds defaultTimeout{60};

  PrintTask task = PrintTask::readings;  ///< What follows is about readings alone.
  bool follow = false;                   ///< A print at every change instead of one.
  PrintFormat format = PrintFormat::text;
  /// The longest wait of a single print. When following: end after it, if `hasTimeout`.
  Seconds timeout = defaultTimeout;
  bool hasTimeout = false;  ///< Whether the user gave the timeout.
  /// The file that is replaced at each print; empty for the standard output. Of openMetrics.
  std::string outputFile;
};

/// What to do, or what to answer at once: help and version with status 0, a mistake with 2.
/// `isTerminal`: whether a person reads, who gets the list where no format is named.
[[nodiscard]] std::variant<PrintOptions, ProgramAnswer> parsePrintOptions(int argc,
                                                                          const char* const* argv,
                                                                          bool isTerminal);

}  // namespace vantora
