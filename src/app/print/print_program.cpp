// SPDX-License-Identifier: MIT
#include "app/print/print_program.hpp"

#include <unistd.h>

#include <cstdio>
#include <variant>

#include "app/print/open_metrics.hpp"
#include "app/print/print_file.hpp"
#include "app/print/print_stream.hpp"
#include "runtime/standard_descriptors.hpp"

namespace vantora::PrintProgram {
namespace {

constexpr const char* programName = "vantora-print";

}  // namespace

int start(int argc, const char* const* argv, int (*run)(const PrintOptions& options)) {
  const bool hasOutput = StandardDescriptors::isOpen(STDOUT_FILENO);
  StandardDescriptors::openMissing();
  const auto parsed = parsePrintOptions(argc, argv, isatty(STDOUT_FILENO) == 1);
  if (const auto* answer = std::get_if<ProgramAnswer>(&parsed)) {
    return give(programName, *answer);
  }
  const auto& options = std::get<PrintOptions>(parsed);
  // No line will ever be read without an output.
  return hasOutput || !options.outputFile.empty() ? run(options) : 0;
}

void complainOfOutput(const PrintOptions& options, int error) {
  if (options.outputFile.empty()) {
    vantora::complainOfOutput(programName, error);
  }
}

void complainOfFile(const std::string& file, const std::string& reason) {
  std::fprintf(stderr, "%s: não foi possível escrever em %s: %s\n", programName, file.c_str(),
               reason.c_str());
}

std::unique_ptr<PrintOutput> makeOutput(const PrintOptions& options, bool readsClicks) {
  if (options.outputFile.empty()) {
    return std::make_unique<PrintStream>(STDOUT_FILENO, options.format, options.follow,
                                         isatty(STDOUT_FILENO) == 1, readsClicks);
  }
  return std::make_unique<PrintFile>(
      options.outputFile, options.follow,
      [file = options.outputFile](const std::string& reason) { complainOfFile(file, reason); });
}

MetricSet alwaysShown(const PrintOptions& options) {
  return options.format == PrintFormat::openMetrics ? OpenMetrics::allReadings() : MetricSet();
}

EventLog eventLog() {
  return EventLog::fromEnvironment(
      [](const std::string& line) { std::fprintf(stderr, "%s: %s\n", programName, line.c_str()); });
}

void tellNotice(const std::optional<std::string>& notice, PrintFormat format) {
  if (notice && format != PrintFormat::json) {
    std::fprintf(stderr, "%s: %s\n", programName, notice->c_str());
  }
}

}  // namespace vantora::PrintProgram
