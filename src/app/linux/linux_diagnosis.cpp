// SPDX-License-Identifier: MIT
#include "app/linux/linux_diagnosis.hpp"

#include <gnu/libc-version.h>
#include <uv.h>

#include <cerrno>
#include <cstdio>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "app/diagnosis/concealer.hpp"
#include "app/diagnosis/diagnosis_json.hpp"
#include "app/diagnosis/diagnosis_text.hpp"
#include "app/diagnosis/findings.hpp"
#include "app/diagnosis/found_assistant.hpp"
#include "app/linux/linux_findings.hpp"
#include "app/linux/own_programs.hpp"
#include "app/program_answer.hpp"
#include "model/version.hpp"
#include "platform/linux/bus/bus_connection.hpp"
#include "platform/linux/desktop/diagnosis_service.hpp"
#include "platform/linux/status_item/appearance_portal.hpp"
#include "platform/linux/status_item/status_item_report.hpp"
#include "platform/linux/status_item/status_notifier_watcher.hpp"
#include "quota/claude/claude_executable_places.hpp"
#include "quota/codex/codex_executable_places.hpp"

namespace vantora {
namespace {

bool isSet(const char* name) {
  return !processEnvironment(name).value_or("").empty();
}

/// What is on the session's bus: the agent, and the panel that shows items.
class BusLook {
 public:
  BusLook(LinuxApplication::Insides& insides, std::function<void()> changed)
      : queue_(insides.loop.queue()),
        changed_(std::move(changed)),
        connection_(insides.loop.raw(), queue_, {}),
        portal_(connection_, [this](ColorScheme scheme) { scheme_ = scheme; }),
        watcher_(connection_, queue_, {.worker = &insides.fileWorker},
                 [this](const StatusNotifierWatcher::State& state) { watcherChanged(state); }),
        question_(connection_, queue_, [this](AgentQuestion::Outcome outcome, const char* text) {
          outcome_ = outcome;
          answer_ = text;
          // The panel is of interest where there is no agent to ask for it.
          constexpr Seconds panelTimeout{0.5};
          panelLimit_ = queue_.runAfter(panelTimeout, Seconds{0}, [this] {
            panelLimit_.reset();
            isPanelKnown_ = true;
            changed_();
          });
          changed_();
        }) {
    watcher_.setRegistering(false);
    connection_.open();
  }

  [[nodiscard]] bool isDone() const {
    return outcome_ &&
           (outcome_ == AgentQuestion::Outcome::answered ||
            outcome_ == AgentQuestion::Outcome::noBus || isPanelKnown_ || isPanelComplete());
  }

  void writeTo(Diagnosis& diagnosis) const {
    using Outcome = AgentQuestion::Outcome;
    diagnosis.bus = "da sessão, conectado";
    switch (outcome_.value_or(Outcome::noBus)) {
      case Outcome::answered:
        takeAgentAnswer(answer_, diagnosis);
        break;
      case Outcome::noBus:
        diagnosis.agent = AgentPresence::noBus;
        diagnosis.bus = isSet("DBUS_SESSION_BUS_ADDRESS") || isSet("XDG_RUNTIME_DIR")
                            ? "nenhum: o da sessão não responde"
                            : "nenhum: o ambiente não diz onde há um (DBUS_SESSION_BUS_ADDRESS)";
        break;
      case Outcome::noAgent:
        diagnosis.agent = AgentPresence::none;
        break;
      case Outcome::older:
        diagnosis.agent = AgentPresence::older;
        break;
      case Outcome::silent:
        diagnosis.agent = AgentPresence::silent;
        break;
    }
    if (!diagnosis.report) {
      diagnosis.item = expectedItem();
    }
  }

 private:
  [[nodiscard]] bool isPanelComplete() const {
    return panel_.hasHost && (panel_.layout || panel_.panel->readsLayout == nullptr);
  }

  void watcherChanged(const StatusNotifierWatcher::State& state) {
    panel_ = state;
    changed_();
  }

  // How an agent's item would be shown. What a docked window alone tells stays unknown, and so do
  // the screens.
  [[nodiscard]] StatusItemReport expectedItem() const {
    StatusItemFacts facts{.watcher = panel_,
                          .colorScheme = scheme_,
                          .isVertical = panel_.layout.value_or(PanelLayout()).isVertical};
    const bool usesTray = isSet("DISPLAY") && panel_.hasHost && panel_.panel->keepsTrayWindowWide;
    if (usesTray) {
      facts.tray = XEmbedWindow::State::docked;
    }
    StatusItemReport report = describe(facts);
    const bool dependsOnScreens = panel_.panel->drawsLargest && !facts.isVertical;
    if (usesTray || dependsOnScreens) {
      report.scale.clear();
    }
    if (usesTray) {
      report.ink.clear();
      report.inkWhy.clear();
    }
    return report;
  }

  TaskQueue& queue_;
  const std::function<void()> changed_;
  std::optional<AgentQuestion::Outcome> outcome_;
  std::string answer_;
  StatusNotifierWatcher::State panel_;
  ColorScheme scheme_ = ColorScheme::noPreference;
  bool isPanelKnown_ = false;
  TimerHandle panelLimit_;
  // The last, because they call.
  BusConnection connection_;
  AppearancePortal portal_;
  StatusNotifierWatcher watcher_;
  AgentQuestion question_;
};

/// Both assistants, and the versions of those whose files do not tell it.
class AssistantLook {
 public:
  AssistantLook(LinuxApplication::Insides& insides, std::function<void()> changed)
      : codex(findAssistant("Codex CLI", insides.defaults.text(codexExecutablePathKey),
                            CodexExecutablePlaces::onLinux(insides.home))),
        claude(findAssistant("Claude Code", std::nullopt,
                             ClaudeExecutablePlaces::onLinux(insides.home))),
        changed_(std::move(changed)) {
    for (AssistantReport* report : {&codex, &claude}) {
      if (report->path && !report->version) {
        ++pending_;
        questions_.push_back(
            std::make_unique<VersionQuestion>(insides.launcher, insides.loop.queue(),
                                              AssistantExecutable{*report->path, report->foundPath},
                                              [this, report](std::optional<std::string> version) {
                                                report->version = std::move(version);
                                                --pending_;
                                                changed_();
                                              }));
      }
    }
  }
  [[nodiscard]] bool isDone() const { return pending_ == 0; }

  AssistantReport codex;
  AssistantReport claude;

 private:
  const std::function<void()> changed_;
  int pending_ = 0;
  std::vector<std::unique_ptr<VersionQuestion>> questions_;
};

Diagnosis collect(LinuxApplication& application, const char* program) {
  LinuxApplication::Insides insides = application.insides();
  const ConfigurationStore store = application.configurationStore();
  const AppConfiguration configuration = store.load().configuration;
  Diagnosis diagnosis;
  diagnosis.program = program;
  diagnosis.version = programVersion;
  diagnosis.system = systemText();
  diagnosis.session = sessionKind();
  diagnosis.desktop = processEnvironment("XDG_CURRENT_DESKTOP").value_or("");
  diagnosis.libraries = {{"libuv", uv_version_string()},
                         {"libsystemd", VANTORA_SYSTEMD_VERSION},
                         {"glibc", gnu_get_libc_version()},
                         {"nlohmann-json", VANTORA_JSON_VERSION}};

  DeviceLook devices({insides.linkThread, insides.batteryThread, insides.sensorThread},
                     insides.clock, configuration.networkInterface);
  std::function<void()> check = [] {};
  const auto changed = [&check] { check(); };
  AssistantLook assistants(insides, changed);
  BusLook bus(insides, changed);
  TimerHandle distance = insides.loop.queue().runAfter(DeviceLook::minDistance, Seconds{0}, [&] {
    distance.reset();
    check();
  });
  check = [&] {
    if (distance == nullptr && assistants.isDone() && bus.isDone()) {
      insides.loop.stop();
    }
  };
  insides.loop.run();
  check = [] {};

  bus.writeTo(diagnosis);
  const MetricSnapshot own = devices.finish(diagnosis);
  findTypefaces(OwnPrograms().glyphs(), diagnosis);
  diagnosis.at = insides.clock.now();
  diagnosis.readings = readingsOf(own, diagnosis.report, diagnosis.at);
  addQuotas(configuration, diagnosis.report, assistants.codex, assistants.claude);
  diagnosis.assistants = {std::move(assistants.codex), std::move(assistants.claude)};
  diagnosis.configuration = configurationFile(store.fileURL());
  diagnosis.backup = configurationFile(store.backupURL());
  diagnosis.loginItem = loginItemText(insides.loginItem.status());
  return diagnosis;
}

}  // namespace

int diagnose(LinuxApplication& application, const DiagnoseOptions& options) {
  const Diagnosis diagnosis = collect(application, options.program);
  const Concealer conceal(spellingsOf(application.insides().home));
  return give(options.program, {0, options.asJson ? diagnosisJson(diagnosis, conceal) + '\n'
                                                  : diagnosisText(diagnosis, conceal)});
}

}  // namespace vantora
