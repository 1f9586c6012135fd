// SPDX-License-Identifier: MIT
//
// `--diagnose` on Linux: looks at session, machine and files, asks the running agent, and prints.
#pragma once

#include "app/linux/linux_application.hpp"

namespace vantora {

/// What is asked of `--diagnose`.
struct DiagnoseOptions {
  const char* program;  ///< The name of the program that was started.
  bool asJson = false;
};

/// Collects and prints a diagnosis; the status to exit with. Takes a few tenths of a second, and
/// some seconds where an agent, an assistant or a driver does not answer. Starts no agent and
/// queries no quota. Main thread; runs the application's loop.
[[nodiscard, gnu::cold]] int diagnose(LinuxApplication& application,
                                      const DiagnoseOptions& options);

}  // namespace vantora
