// SPDX-License-Identifier: MIT
#include "app/print/print_program.hpp"

#include <unistd.h>

#include <cstdio>
#include <variant>

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
  // No line will ever be read.
  return hasOutput ? run(std::get<PrintOptions>(parsed)) : 0;
}

void complainOfOutput(int error) {
  vantora::complainOfOutput(programName, error);
}

void tellNotice(const std::optional<std::string>& notice, PrintFormat format) {
  if (notice && format != PrintFormat::json) {
    std::fprintf(stderr, "%s: %s\n", programName, notice->c_str());
  }
}

}  // namespace vantora::PrintProgram
