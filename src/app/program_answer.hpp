// SPDX-License-Identifier: MIT
//
// What a program answers on the command line when it does not run.
#pragma once

#include <string>

namespace vantora {

/// An answer that was asked for (status 0, standard output), or a line that says what is wrong
/// (another status, standard error).
struct ProgramAnswer {
  int status = 0;
  std::string text;
};

/// Writes the answer and returns the status to exit with: 1, with a line that begins with
/// `program`, where it cannot be written.
[[nodiscard]] int give(const char* program, const ProgramAnswer& answer);

/// Says on standard error why nothing can be written (errno).
void complainOfOutput(const char* program, int error);

}  // namespace vantora
