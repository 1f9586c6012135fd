// SPDX-License-Identifier: MIT
//
// vantora-print on macOS: the same coordinator with lines of text for a status item.
#include <CoreFoundation/CoreFoundation.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>
#include <variant>

#include "app/macos/macos_application.hpp"
#include "app/print/cell_text_engine.hpp"
#include "app/print/print_options.hpp"
#include "app/print/print_session.hpp"
#include "platform/macos/application_folders.hpp"
#include "runtime/termination_signals.hpp"

namespace vantora {
namespace {

int run(const PrintOptions& options) {
  ignoreBrokenPipes();
  auto folder = applicationSupportFolder();
  if (!folder) {
    std::fputs("vantora-print: o macOS não informa a pasta Application Support\n", stderr);
    return 1;
  }
  const auto stopLoop = [] { CFRunLoopStop(CFRunLoopGetMain()); };
  std::function<void()> end;
  MacOSApplication application(std::move(*folder), [&end] { end(); });
  CellTextEngine textEngine;
  PrintOutput output(STDOUT_FILENO, options.format, options.follow, isatty(STDOUT_FILENO) == 1);
  int status = 0;
  PrintSession session(options, output, application.mainQueue(), application.clock(),
                       [&](int error) {
                         if (error != 0) {
                           std::fprintf(stderr, "vantora-print: não foi possível escrever: %s\n",
                                        std::strerror(error));
                           status = 1;
                         }
                         stopLoop();
                       });
  end = [&session] { session.stop(); };
  const auto coordinator = AppCoordinator::create(application.parts(session, textEngine));
  // From the loop, so that an end in the very first print stops it.
  application.mainQueue().post([&] { session.start(*coordinator); });
  CFRunLoopRun();
  coordinator->terminate();
  return status;
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  const auto parsed = vantora::parsePrintOptions(argc, argv);
  if (const auto* exit = std::get_if<vantora::PrintExit>(&parsed)) {
    std::fputs(exit->text.c_str(), exit->status == 0 ? stdout : stderr);
    return exit->status;
  }
  return vantora::run(std::get<vantora::PrintOptions>(parsed));
}
