// SPDX-License-Identifier: MIT
//
// The agent on Linux: chooses the adapters and runs the main loop.
#include <uv.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "app/app_coordinator.hpp"
#include "app/linux/linux_application.hpp"
#include "platform/linux/application_service.hpp"
#include "platform/linux/bus_address.hpp"
#include "platform/linux/bus_connection.hpp"
#include "platform/linux/font_lookup_process.hpp"
#include "platform/linux/fontconfig_lookup.hpp"
#include "platform/linux/freetype_text_engine.hpp"
#include "platform/linux/linux_status_item.hpp"
#include "platform/linux/screen_scale.hpp"
#include "platform/linux/xdg_folders.hpp"
#include "platform/linux/xdg_url_opener.hpp"
#include "runtime/resident_memory.hpp"
#include "runtime/standard_streams.hpp"
#include "runtime/termination_signals.hpp"
#include "settings/agent/menu_process.hpp"
#include "settings/agent/settings_process.hpp"
#include "settings/agent/tool_tip_process.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

// What a person who started the program in a terminal, or reads the session's log, is told.
void say(std::string_view line) {
  std::fprintf(stderr, "vantora: %.*s\n", static_cast<int>(line.size()), line.data());
}

// The variable's value, empty where there is none.
std::string environmentText(const char* name) {
  const char* text = std::getenv(name);
  return text != nullptr ? text : "";
}

// The program of window and menu stands beside this one, in a build folder as where it is
// installed.
std::string settingsProgram() {
  return ownExecutable().value_or("/usr/bin/vantora").parent_path() / "vantora-settings";
}

std::unique_ptr<SettingsWindow> settingsWindow(LinuxApplication& application, AppParts& parts) {
  auto window = std::make_unique<SettingsProcess>(SettingsProcess::Parts{
      .queue = parts.mainQueue,
      .clock = parts.clock,
      .launcher = application.launcher(),
      .model = *parts.model,
      .executable = settingsProgram(),
      .rasterise = [&engine = parts.textEngine](
                       const StatusImage& image,
                       double scale) { return rasterise(image, engine, scale); },
      .codexExecutable = [&quota = *parts.quota] { return quota.executableDescription(); },
      .claudeExecutable = [&quota = *parts.claudeQuota] { return quota.executableDescription(); },
  });
  window->onFailure = [](const std::string& message) { say(message); };
  return window;
}

// What the launcher gave is for this start alone. A child that found it in its environment
// would come to the front, or not, with a token that has been used.
LaunchTokens takeLaunchTokens() {
  constexpr const char* activation = "XDG_ACTIVATION_TOKEN";
  constexpr const char* startupId = "DESKTOP_STARTUP_ID";
  LaunchTokens tokens = LaunchTokens::from(std::getenv(activation), std::getenv(startupId));
  unsetenv(activation);
  unsetenv(startupId);
  return tokens;
}

// Ends a start that is not the session's first; nothing for the one that goes on.
std::optional<int> statusOf(ApplicationStart start) {
  switch (start) {
    case ApplicationStart::first:
      return std::nullopt;
    case ApplicationStart::another:
      say("já está em execução nesta sessão; o pedido de abertura foi passado adiante");
      return 0;
    case ApplicationStart::silentAnother:
      say("já está em execução nesta sessão, mas não responde");
      return 1;
  }
  return std::nullopt;
}

int run() {
  ignoreBrokenPipes();
  const auto configHome = XdgFolders::configHome();
  if (!configHome) {
    say("não há pasta pessoal para a configuração (HOME não está definida)");
    return 1;
  }
  LaunchTokens tokens = takeLaunchTokens();
  // Before there are threads: the lookups happen in children of their own.
  FontSelection fonts = lookUpApart([] { return lookUpFonts(); });
  LinuxStatusItem::Options options;
  options.largestScale =
      lookUpScreenScaleApart({environmentText("WAYLAND_DISPLAY"), environmentText("DISPLAY")});
  LinuxApplication application(*configHome);
  UvLoop& loop = application.loop();
  FreetypeTextEngine textEngine(std::move(fonts));
  const std::string busAddress =
      sessionBusAddress(std::getenv("DBUS_SESSION_BUS_ADDRESS"), std::getenv("XDG_RUNTIME_DIR"));
  BusConnection bus(loop.raw(), loop.queue(), busAddress);
  ApplicationService service(bus, loop.queue(), std::move(tokens));
  service.onRival = [] {
    say("há outro em execução nesta sessão; os dois continuam até que um seja encerrado");
  };
  // Before there is anything that can be seen: another agent may be there already.
  bus.open();
  while (!service.start()) {
    uv_run(&loop.raw(), UV_RUN_ONCE);
  }
  if (const auto status = statusOf(*service.start())) {
    return *status;
  }
  const TerminationSignals signals(loop.raw(), [&loop] { loop.stop(); });
  const MenuProcess::Parts popupParts{.queue = loop.queue(),
                                      .launcher = application.launcher(),
                                      .executable = settingsProgram(),
                                      .environmentChanges = MenuProcess::onX11(busAddress)};
  MenuProcess menu(popupParts);
  ToolTipProcess toolTip(popupParts);
  menu.onFailure = toolTip.onFailure = [](const std::string& message) { say(message); };
  LinuxStatusItem statusItem(bus, loop.queue(), textEngine, std::move(options),
                             [](StatusItemSituation situation) { say(describe(situation)); });
  if (const std::string display = environmentText("DISPLAY"); !display.empty()) {
    statusItem.useTray(loop.raw(), display, {menu, toolTip});
  }
  XdgUrlOpener urlOpener(loop.raw());
  AppParts parts = application.parts(statusItem, textEngine);
  if (const auto& notice = parts.model->notice()) {
    say(*notice);
  }
  parts.settingsWindow = settingsWindow(application, parts);
  parts.urlOpener = &urlOpener;
  const auto coordinator = AppCoordinator::create(std::move(parts));
  service.onActivate = [weak = std::weak_ptr(coordinator)](const std::string& token) {
    if (const auto target = weak.lock()) {
      target->reopen(token);
    }
  };
  coordinator->launch();
  // Once the first pictures stand in the panel, and now and then for what was needed
  // seldom since: a query, a menu, other fonts.
  constexpr Seconds settled{5};
  constexpr Seconds nowAndThen{600};
  const TimerHandle afterStart = loop.queue().runAfter(settled, Seconds{1}, &releaseUnusedCode);
  const TimerHandle later = loop.queue().runEvery(nowAndThen, Seconds{60}, &releaseUnusedCode);
  loop.run();
  coordinator->terminate();
  return 0;
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  vantora::StandardStreams::openMissing();
  if (argc > 1) {
    std::fprintf(stderr, "vantora: argumento desconhecido: %s (não há opções)\n", argv[1]);
    return 2;
  }
  return vantora::run();
}
