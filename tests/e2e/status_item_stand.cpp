// SPDX-License-Identifier: MIT
//
// status_item_stand [SECONDS [MENU]]: the real status item with readings that a
// test knows beforehand, for trying panels and for counting what a change of the picture
// costs. MENU is the program that shows menu and tool tip of a docked window. Prints the
// item's situation and what is clicked, a line each, and ends with "Sair" or SIGTERM.
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <utility>

#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/status_item/linux_status_item.hpp"
#include "platform/linux/text/glyph_process.hpp"
#include "platform/linux/text/glyph_text_engine.hpp"
#include "process/uv_child_process.hpp"
#include "runtime/system_clock.hpp"
#include "runtime/uv_loop.hpp"
#include "runtime/worker.hpp"
#include "settings/agent/menu_process.hpp"
#include "settings/agent/tool_tip_process.hpp"
#include "status/status_renderer.hpp"

namespace {

using namespace vantora;

MetricSnapshot readings(int round, WallTime now) {
  MetricSnapshot snapshot;
  snapshot.batteryOnAC = false;
  const auto set = [&](MetricID metric, double value) {
    snapshot.samples.set(metric, MetricSample::valid(value, "stand", now));
  };
  set(MetricID::cpuUsage, 7 + round * 13 % 93);
  set(MetricID::cpuTemperature, 48 + round % 20);
  set(MetricID::download, 120'000.0 + round * 431'000 % 3'000'000);
  set(MetricID::upload, 30'000.0 + round * 17'000 % 900'000);
  set(MetricID::batteryPercent, 83);
  set(MetricID::batteryTime, 154);
  set(MetricID::batteryTemperature, 31);
  return snapshot;
}

int run(double interval, std::string menuProgram) {
  std::setvbuf(stdout, nullptr, _IOLBF, 0);
  const SystemClock clock;
  UvLoop loop;
  GlyphProcess glyphs(VANTORA_GLYPHS, clock);
  GlyphTextEngine engine(glyphs);
  const char* busAddress = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  BusConnection connection(loop.raw(), loop.queue(), {});
  UvChildProcessLauncher launcher(loop.raw(), loop.queue());
  const MenuProcess::Parts popupParts{loop.queue(), launcher, std::move(menuProgram),
                                      MenuProcess::onX11(busAddress != nullptr ? busAddress : "")};
  MenuProcess menu(popupParts);
  ToolTipProcess toolTip(popupParts);
  menu.onFailure = [](const std::string& message) { std::printf("menu: %s\n", message.c_str()); };
  OwnDisplayThread displayThread;
  ThreadWorker files(loop.queue());
  LinuxStatusItem::Options options;
  options.fileWorker = &files;
  LinuxStatusItem item(connection, loop.queue(), engine, std::move(options),
                       [](StatusItemSituation situation) {
                         std::printf("situation: %s\n", std::string(describe(situation)).c_str());
                       });
  if (const char* display = std::getenv("DISPLAY")) {
    item.useTray(displayThread, display, {menu, toolTip});
  }
  const AppConfiguration configuration;  // its modules keep their identities
  int round = 0;
  bool isPaused = false;
  const auto show = [&] {
    const WallTime now = clock.now();
    item.show(StatusRenderer::render(configuration, readings(round, now),
                                     {item.thickness(), now, engine}));
  };
  item.setActions({.openSettings =
                       [](std::string_view token) {
                         std::printf("openSettings: %s\n", std::string(token).c_str());
                       },
                   .togglePause =
                       [&] {
                         isPaused = !isPaused;
                         std::printf("togglePause: %d\n", isPaused ? 1 : 0);
                         show();
                       },
                   .quit =
                       [&] {
                         std::printf("quit\n");
                         loop.stop();
                       },
                   .isPaused = [&] { return isPaused; }});
  show();
  connection.open();
  const TimerHandle tick = loop.queue().runEvery(Seconds{interval}, Seconds{0.1}, [&] {
    round += isPaused ? 0 : 1;
    show();
  });
  uv_signal_t terminated{};
  uv_signal_init(&loop.raw(), &terminated);
  uv_signal_start(
      &terminated, [](uv_signal_t* handle, int) { uv_stop(handle->loop); }, SIGTERM);
  loop.run();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  const double interval = argc > 1 ? std::atof(argv[1]) : 1;
  return run(interval > 0 ? interval : 1, argc > 2 ? argv[2] : "");
}
