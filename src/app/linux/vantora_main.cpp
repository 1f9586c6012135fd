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
#include <variant>

#include "app/app_coordinator.hpp"
#include "app/linux/agent_arguments.hpp"
#include "app/linux/linux_application.hpp"
#include "app/linux/linux_diagnosis.hpp"
#include "app/linux/own_programs.hpp"
#include "app/linux/start_program.hpp"
#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/desktop/application_service.hpp"
#include "platform/linux/desktop/desktop_notifier.hpp"
#include "platform/linux/desktop/diagnosis_service.hpp"
#include "platform/linux/desktop/session_marker.hpp"
#include "platform/linux/desktop/startup_notification.hpp"
#include "platform/linux/desktop/xdg_folders.hpp"
#include "platform/linux/desktop/xdg_url_opener.hpp"
#include "platform/linux/screens/screen_scales.hpp"
#include "platform/linux/status_item/linux_status_item.hpp"
#include "platform/linux/text/glyph_process.hpp"
#include "platform/linux/text/glyph_text_engine.hpp"
#include "runtime/standard_descriptors.hpp"
#include "runtime/termination_signals.hpp"
#include "settings/agent/menu_process.hpp"
#include "settings/agent/settings_process.hpp"
#include "settings/agent/tool_tip_process.hpp"
#include "status/rasterise.hpp"

namespace vantora {
namespace {

// For the person who started the program in a terminal, or reads the session's log.
void say(std::string_view line) {
  std::fprintf(stderr, "vantora: %.*s\n", static_cast<int>(line.size()), line.data());
}

// For the person who clicked, and sees nothing of a program that only reports on standard error.
void tell(Notifier& notifier, const std::string& message) {
  say(message);
  notifier.notify(message);
}

// The variable's value, empty where there is none.
std::string environmentText(const char* name) {
  const char* text = std::getenv(name);
  return text != nullptr ? text : "";
}

std::unique_ptr<SettingsWindow> settingsWindow(LinuxApplication& application, AppParts& parts,
                                               Notifier& notifier) {
  auto window = std::make_unique<SettingsProcess>(SettingsProcess::Parts{
      .queue = parts.mainQueue,
      .clock = parts.clock,
      .launcher = application.launcher(),
      .model = *parts.model,
      .executable = OwnPrograms().settings(),
      .rasterise = [&engine = parts.textEngine](
                       const StatusImage& image,
                       double scale) { return rasterise(image, engine, scale); },
      .codexExecutable = [&quota = *parts.codexQuota] { return quota.executableDescription(); },
      .claudeExecutable = [&quota = *parts.claudeQuota] { return quota.executableDescription(); },
  });
  window->onFailure = [&notifier](const std::string& message) { tell(notifier, message); };
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
    case ApplicationStart::startingAnother:
      say("já está em execução nesta sessão e acabou de iniciar; abra-o de novo para ver as "
          "configurações");
      return 0;
    case ApplicationStart::silentAnother:
      say("já está em execução nesta sessão, mas não responde");
      return 1;
  }
  return std::nullopt;
}

// A desktop without a place for status items, as GNOME comes, shows nothing of a program
// that only reports on standard error.
void notifyOfMissingPanel(Notifier& notifier) {
  if (markOncePerSession(std::getenv("XDG_RUNTIME_DIR"), "vantora-no-panel")) {
    notifier.notify(
        "O Vantora está em execução, mas nenhum painel desta sessão mostra itens de status. No "
        "GNOME, instale e ative a extensão AppIndicator; em outros ambientes, adicione a bandeja "
        "do sistema ao painel. Para ver as configurações, abra o Vantora de novo.");
  }
}

// The launcher's busy cursor would wait for a window that an agent does not open. In a
// Wayland session the launcher has a limit of its own, and nothing but a window ends it sooner.
void endBusyCursor(Worker& worker, const LaunchTokens& tokens) {
  const std::string display = environmentText("DISPLAY");
  if (!tokens.startupId.empty() && !display.empty() && environmentText("WAYLAND_DISPLAY").empty()) {
    worker.run([display, id = tokens.startupId] { StartupNotification::complete(display, id); },
               [] {});
  }
}

/// Notes when the session's bus comes and goes.
class BusEvents final : public BusConnection::Listener {
 public:
  BusEvents(BusConnection& bus, const EventLog& log) : bus_(bus), log_(log) { bus_.add(*this); }
  ~BusEvents() override { bus_.remove(*this); }
  BusEvents(const BusEvents&) = delete;
  BusEvents& operator=(const BusEvents&) = delete;

  void busConnected(sd_bus& /*bus*/) override { note(true); }
  void busLost() override { note(false); }

 private:
  void note(bool isConnected) {
    if (isConnected != isConnected_) {
      isConnected_ = isConnected;
      log_.info(isConnected ? "barramento da sessão: conectado"
                            : "barramento da sessão: sem conexão");
    }
  }

  BusConnection& bus_;
  const EventLog& log_;
  std::optional<bool> isConnected_;
};

int runAgent(LinuxApplication& application, LaunchTokens tokens) {
  UvLoop& loop = application.loop();
  // The X server may not answer, which must not hold up anything else.
  ThreadWorker startupWorker(loop.queue());
  endBusyCursor(startupWorker, tokens);
  GlyphProcess glyphs(OwnPrograms().glyphs(), application.clock());
  glyphs.onFailure = [](const std::string& message) { say(message); };
  GlyphTextEngine textEngine(glyphs);
  const EventLog log = EventLog::fromEnvironment(say);
  BusConnection bus(loop.raw(), loop.queue(), {});  // the session's
  const BusEvents busEvents(bus, log);
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
                                      .executable = OwnPrograms().settings(),
                                      .environmentChanges = MenuProcess::onX11(bus.address())};
  MenuProcess menu(popupParts);
  ToolTipProcess toolTip(popupParts);
  OwnDisplayThread displayThread;
  DesktopNotifier notifier(bus);
  menu.onFailure = [&notifier](const std::string& message) { tell(notifier, message); };
  toolTip.onFailure = [](const std::string& message) { say(message); };
  LinuxStatusItem::Options itemOptions;
  itemOptions.fileWorker = &application.insides().fileWorker;
  itemOptions.onDecision = [&log](const std::string& line) { log.info(line); };
  ScreenScales screens(loop.raw());
  itemOptions.onScaleWanted = [&screens] { screens.follow(environmentText("WAYLAND_DISPLAY")); };
  LinuxStatusItem statusItem(bus, loop.queue(), textEngine, std::move(itemOptions),
                             [&notifier](StatusItemSituation situation) {
                               say(describe(situation));
                               if (situation == StatusItemSituation::noHost) {
                                 notifyOfMissingPanel(notifier);
                               }
                             });
  screens.onChange = [&statusItem](std::optional<int> scale) { statusItem.setScreenScale(scale); };
  if (const std::string display = environmentText("DISPLAY"); !display.empty()) {
    statusItem.useTray(displayThread, display, {menu, toolTip});
  }
  XdgUrlOpener urlOpener(loop.raw());
  AppParts parts = application.parts(statusItem, textEngine);
  if (const auto& notice = parts.model->notice()) {
    const auto& keepAs = parts.model->keepAs();
    say(*notice +
        (keepAs ? " Na primeira gravação, ela será guardada em " + keepAs->string() + "." : ""));
  }
  parts.model->onSaveFailure = [&notifier](const std::string& message) { tell(notifier, message); };
  parts.settingsWindow = settingsWindow(application, parts, notifier);
  parts.urlOpener = &urlOpener;
  parts.log = log;
  const auto coordinator = AppCoordinator::create(std::move(parts));
  SettingsModel& model = coordinator->model();
  model.onSquareModuleChange = [&statusItem](const std::optional<UUID>& module) {
    statusItem.setSquareModule(module);
  };
  statusItem.setSquareListener([weak = std::weak_ptr(coordinator)](bool keepsSquare) {
    if (const auto target = weak.lock()) {
      target->model().setKeepsSquare(keepsSquare);
    }
  });
  service.onActivate = [weak = std::weak_ptr(coordinator)](const std::string& token) {
    const auto target = weak.lock();
    return target != nullptr && target->reopen(token);
  };
  const DiagnosisService diagnosis(bus, [&coordinator] { return encode(coordinator->report()); });
  coordinator->launch();
  loop.run();
  coordinator->terminate();
  return 0;
}

int run(AgentTask task) {
  ignoreBrokenPipes();
  const auto configHome = XdgFolders::configHome();
  if (!configHome) {
    say("não há pasta pessoal para a configuração (HOME não está definida)");
    return 1;
  }
  LaunchTokens tokens = takeLaunchTokens();
  LinuxApplication application(*configHome);
  if (task != AgentTask::run) {
    return application.end(diagnose(application, {"vantora", task == AgentTask::diagnoseAsJson}));
  }
  return application.end(runAgent(application, std::move(tokens)));
}

}  // namespace
}  // namespace vantora

int main(int argc, char** argv) {
  vantora::StandardDescriptors::openMissing();
  const auto read = vantora::readAgentArguments(argc, argv);
  if (const auto* answer = std::get_if<vantora::ProgramAnswer>(&read)) {
    return vantora::give("vantora", *answer);
  }
  return vantora::startProgram(
      "vantora", [task = std::get<vantora::AgentTask>(read)] { return vantora::run(task); });
}
