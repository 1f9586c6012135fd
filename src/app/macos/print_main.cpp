// SPDX-License-Identifier: MIT
//
// vantora-print on macOS: the same coordinator with lines of text for a status item.
#include <CoreFoundation/CoreFoundation.h>

#include <cstdio>
#include <functional>
#include <utility>

#include "app/macos/macos_application.hpp"
#include "app/macos/macos_diagnosis.hpp"
#include "app/print/cell_text_engine.hpp"
#include "app/print/print_options.hpp"
#include "app/print/print_program.hpp"
#include "app/print/print_session.hpp"
#include "app/print/resize_signal.hpp"
#include "platform/macos/base/autorelease_pool.hpp"
#include "platform/macos/settings/application_folders.hpp"
#include "runtime/termination_signals.hpp"

namespace vantora {
namespace {

int run(const PrintOptions& options) {
  // For what happens outside of the queues' tasks, which have pools of their own.
  const AutoreleasePool pool;
  ignoreBrokenPipes();
  auto folder = applicationSupportFolder();
  if (!folder) {
    std::fputs("vantora-print: o macOS não informa a pasta Application Support\n", stderr);
    return 1;
  }
  const auto stopLoop = [] { CFRunLoopStop(CFRunLoopGetMain()); };
  if (options.task != PrintTask::readings) {
    MacOSApplication asked(std::move(*folder), stopLoop);
    return diagnose(asked, {"vantora-print", options.task == PrintTask::diagnosisAsJson});
  }
  std::function<void()> end;
  MacOSApplication application(std::move(*folder), [&end] { end(); });
  CellTextEngine textEngine;
  // There is no i3bar on a Mac: the format serves scripts, which do not click.
  const auto output = PrintProgram::makeOutput(options, /*readsClicks=*/false);
  int status = 0;
  PrintSession session(options, *output, application.mainQueue(), [&](int error) {
    if (error != 0) {
      PrintProgram::complainOfOutput(options, error);
      status = 1;
    }
    stopLoop();
  });
  end = [&session] { session.stop(); };
  const ResizeSignal resize(application.mainLoop(), [&session] { session.resized(); });
  AppParts parts = application.parts(session, textEngine);
  parts.alwaysShown = PrintProgram::alwaysShown(options);
  parts.log = PrintProgram::eventLog();
  const auto coordinator = AppCoordinator::create(std::move(parts));
  PrintProgram::tellNotice(coordinator->model().notice(), options.format);
  // From the loop, so that an end in the very first print stops it.
  application.mainQueue().post([&] { session.start(*coordinator); });
  CFRunLoopRun();
  coordinator->terminate();
  return status;
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  return vantora::PrintProgram::start(argc, argv, &vantora::run);
}
