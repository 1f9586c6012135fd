// SPDX-License-Identifier: MIT
//
// What the mains of vantora-print have in common: the standard streams, the command line
// and the messages for people.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "app/event_log.hpp"
#include "app/print/print_options.hpp"
#include "app/print/print_output.hpp"
#include "model/metric.hpp"

namespace vantora::PrintProgram {

/// Reads the command line and calls `run`, unless there is nothing to run for: help, a
/// mistake, or a standard output that the caller closed. Answers the exit status. Before
/// anything is opened.
[[nodiscard]] int start(int argc, const char* const* argv, int (*run)(const PrintOptions& options));

/// Says on standard error why nothing can be written (errno), unless the output is a file, which
/// has said so itself.
void complainOfOutput(const PrintOptions& options, int error);

/// Says on standard error why this file cannot be written.
void complainOfFile(const std::string& file, const std::string& reason);

/// Where the prints go by the command line. The standard output stays open. `readsClicks`:
/// whether the caller reads the clicks of a bar, which is then asked for them.
[[nodiscard]] std::unique_ptr<PrintOutput> makeOutput(const PrintOptions& options,
                                                      bool readsClicks);

/// What is read besides what the user's modules show.
[[nodiscard]] MetricSet alwaysShown(const PrintOptions& options);

/// On standard error, as the environment asks for it.
[[nodiscard]] EventLog eventLog();

/// Says on standard error what the user is to know of the configuration. Not where the
/// format carries it.
void tellNotice(const std::optional<std::string>& notice, PrintFormat format);

}  // namespace vantora::PrintProgram
