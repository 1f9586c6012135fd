// SPDX-License-Identifier: MIT
#include "app/print/print_program.hpp"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <variant>

#include "runtime/standard_streams.hpp"

namespace vantora::PrintProgram {

int start(int argc, const char* const* argv, int (*run)(const PrintOptions& options)) {
  const bool hasOutput = StandardStreams::isOpen(STDOUT_FILENO);
  StandardStreams::openMissing();
  const auto parsed = parsePrintOptions(argc, argv);
  if (const auto* exit = std::get_if<PrintExit>(&parsed)) {
    std::fputs(exit->text.c_str(), exit->status == 0 ? stdout : stderr);
    if (std::fflush(stdout) != 0) {
      complainOfOutput(errno);
      return 1;
    }
    return exit->status;
  }
  // Nobody will ever read a line.
  return hasOutput ? run(std::get<PrintOptions>(parsed)) : 0;
}

void complainOfOutput(int error) {
  std::fprintf(stderr, "vantora-print: não foi possível escrever: %s\n", std::strerror(error));
}

void tellNotice(const std::optional<std::string>& notice, PrintFormat format) {
  if (notice && format != PrintFormat::json) {
    std::fprintf(stderr, "vantora-print: %s\n", notice->c_str());
  }
}

}  // namespace vantora::PrintProgram
