// SPDX-License-Identifier: MIT
#include "app/linux/start_program.hpp"

#include <cstdio>
#include <system_error>

#include "runtime/standard_descriptors.hpp"
#include "settings/error_text.hpp"

namespace vantora {
namespace {

int fail(const char* name, const char* reason) {
  std::fprintf(stderr, "%s: não é possível iniciar: %s\n", name, reason);
  return 1;
}

}  // namespace

int startProgram(const char* name, const std::function<int()>& run) {
  // The loops and the bus have a dozen between them. libuv aborts where its first loop finds
  // none; everything that opens files later reports it.
  constexpr int neededDescriptors = 16;
  if (!StandardDescriptors::canOpen(neededDescriptors)) {
    return fail(name, "o limite de arquivos abertos do processo é baixo demais (ulimit -n)");
  }
  try {
    return run();
  } catch (const std::system_error& error) {
    return fail(name, systemErrorText(error.code().value()).c_str());
  }
}

}  // namespace vantora
