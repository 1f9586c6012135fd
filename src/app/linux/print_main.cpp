// SPDX-License-Identifier: MIT
//
// vantora-print on Linux: the same coordinator with lines of text for a status item.
#include <unistd.h>

#include <cstdio>
#include <optional>
#include <utility>

#include "app/linux/linux_application.hpp"
#include "app/linux/linux_diagnosis.hpp"
#include "app/linux/own_programs.hpp"
#include "app/linux/start_program.hpp"
#include "app/print/cell_text_engine.hpp"
#include "app/print/click_input.hpp"
#include "app/print/print_options.hpp"
#include "app/print/print_program.hpp"
#include "app/print/print_session.hpp"
#include "app/print/reader_watch.hpp"
#include "app/print/resize_signal.hpp"
#include "platform/linux/desktop/detached_programs.hpp"
#include "platform/linux/desktop/xdg_folders.hpp"
#include "runtime/termination_signals.hpp"

namespace vantora {
namespace {

// What a person does who opens Vantora from the desktop's menu: the session's agent shows its
// window, and without one an agent starts.
void openVantora(DetachedPrograms& programs) {
  const std::string program = OwnPrograms().agent();
  if (!programs.start({program})) {
    std::fprintf(stderr, "vantora-print: não foi possível iniciar %s\n", program.c_str());
  }
}

int print(LinuxApplication& application, const PrintOptions& options) {
  UvLoop& loop = application.loop();
  CellTextEngine textEngine;
  const bool readsClicks = options.follow && options.format == PrintFormat::i3bar;
  const auto output = PrintProgram::makeOutput(options, readsClicks);
  int status = 0;
  PrintSession session(options, *output, loop.queue(), [&](int error) {
    if (error != 0) {
      PrintProgram::complainOfOutput(options, error);
      status = 1;
    }
    loop.stop();
  });
  AppParts parts = application.parts(session, textEngine);
  parts.alwaysShown = PrintProgram::alwaysShown(options);
  parts.log = PrintProgram::eventLog();
  const auto coordinator = AppCoordinator::create(std::move(parts));
  PrintProgram::tellNotice(coordinator->model().notice(), options.format);
  const TerminationSignals signals(loop.raw(), [&session] { session.stop(); });
  const ResizeSignal resize(loop.raw(), [&session] { session.resized(); });
  std::optional<ReaderWatch> reader;
  if (options.follow && options.outputFile.empty()) {
    reader.emplace(loop.raw(), STDOUT_FILENO, [&session] { session.stop(); });
  }
  DetachedPrograms programs(loop.raw());
  std::optional<ClickInput> clicks;
  if (readsClicks) {
    clicks.emplace(loop.raw(), STDIN_FILENO, [&](BlockButton button) {
      if (button == BlockButton::left) {
        openVantora(programs);
      } else {
        session.togglePause();
      }
    });
  }
  // From the loop, so that an end in the very first print stops it.
  loop.queue().post([&] { session.start(*coordinator, PrintSession::ReaderCheck::byItsOwner); });
  loop.run();
  coordinator->terminate();
  return status;
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
  if (options.task != PrintTask::readings) {
    return application.end(
        diagnose(application, {"vantora-print", options.task == PrintTask::diagnosisAsJson}));
  }
  return application.end(print(application, options));
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  return vantora::PrintProgram::start(argc, argv, [](const vantora::PrintOptions& options) {
    return vantora::startProgram("vantora-print", [&options] { return vantora::run(options); });
  });
}
