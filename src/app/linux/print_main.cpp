// SPDX-License-Identifier: MIT
//
// vantora-print on Linux: the same coordinator with lines of text for a status item.
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <string>
#include <variant>

#include "app/linux/linux_application.hpp"
#include "app/print/cell_text_engine.hpp"
#include "app/print/print_options.hpp"
#include "app/print/print_session.hpp"
#include "platform/linux/xdg_folders.hpp"
#include "runtime/standard_streams.hpp"
#include "runtime/termination_signals.hpp"

namespace vantora {
namespace {

void complainAboutOutput(int error) {
  std::fprintf(stderr, "vantora-print: não foi possível escrever: %s\n", std::strerror(error));
}

int run(const PrintOptions& options) {
  ignoreBrokenPipes();
  const auto configHome = XdgFolders::configHome();
  if (!configHome) {
    std::fputs("vantora-print: não há pasta pessoal para a configuração (HOME não está definida)\n",
               stderr);
    return 1;
  }
  LinuxApplication application(*configHome);
  UvLoop& loop = application.loop();
  CellTextEngine textEngine;
  PrintOutput output(STDOUT_FILENO, options.format, options.follow, isatty(STDOUT_FILENO) == 1);
  int status = 0;
  PrintSession session(options, output, loop.queue(), application.clock(), [&](int error) {
    if (error != 0) {
      complainAboutOutput(error);
      status = 1;
    }
    loop.stop();
  });
  const auto coordinator = AppCoordinator::create(application.parts(session, textEngine));
  // JSON carries it.
  if (const auto& notice = coordinator->model().notice();
      notice && options.format != PrintFormat::json) {
    std::fprintf(stderr, "vantora-print: %s\n", notice->c_str());
  }
  const TerminationSignals signals(loop.raw(), [&session] { session.stop(); });
  // From the loop, so that an end in the very first print stops it.
  loop.queue().post([&] { session.start(*coordinator); });
  loop.run();
  coordinator->terminate();
  return status;
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  const bool hasOutput = vantora::StandardStreams::isOpen(STDOUT_FILENO);
  vantora::StandardStreams::openMissing();
  const auto parsed = vantora::parsePrintOptions(argc, argv);
  if (const auto* exit = std::get_if<vantora::PrintExit>(&parsed)) {
    std::fputs(exit->text.c_str(), exit->status == 0 ? stdout : stderr);
    if (std::fflush(stdout) != 0) {
      vantora::complainAboutOutput(errno);
      return 1;
    }
    return exit->status;
  }
  // Nobody will ever read a line.
  return hasOutput ? vantora::run(std::get<vantora::PrintOptions>(parsed)) : 0;
}
