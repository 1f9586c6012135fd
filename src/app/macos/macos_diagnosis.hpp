// SPDX-License-Identifier: MIT
//
// `--diagnose` on macOS: looks at the machine, the assistants and the files, and prints. The
// running agent is only looked for: nothing on this system carries a question to it.
#pragma once

#include "app/macos/macos_application.hpp"

namespace vantora {

/// What is asked of `--diagnose`.
struct DiagnoseOptions {
  const char* program;  ///< The name of the program that was started.
  bool asJson = false;
};

/// Collects and prints a diagnosis; the status to exit with. `end`, which the application was
/// made with, must stop the main run loop. Main thread; runs the main run loop.
[[nodiscard]] int diagnose(MacOSApplication& application, const DiagnoseOptions& options);

}  // namespace vantora
