// SPDX-License-Identifier: MIT
#include "app/macos/macos_diagnosis.hpp"

#include <CoreFoundation/CoreFoundation.h>
#include <sys/utsname.h>
#include <uv.h>

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
#include "app/program_answer.hpp"
#include "model/version.hpp"
#include "platform/macos/app/single_agent.hpp"
#include "quota/claude/claude_executable_places.hpp"
#include "quota/codex/codex_executable_places.hpp"
#include "sampling/cpu_collector.hpp"
#include "sampling/link_reports.hpp"
#include "sampling/network_collector.hpp"

namespace vantora {
namespace {

constexpr MetricSet sensorMetrics{
    MetricID::batteryTemperature, MetricID::cpuTemperature, MetricID::fan1Percent,
    MetricID::fan2Percent,        MetricID::fan1RPM,        MetricID::fan2RPM};
/// Rates of a shorter time say little.
constexpr Seconds minDistance{0.5};

std::string systemText() {
  utsname kernel{};
  if (::uname(&kernel) != 0) {
    return "macOS";
  }
  // Not its nodename, which is the host's.
  return std::string("macOS; ") + kernel.sysname + ' ' + kernel.release + ' ' + kernel.machine;
}

/// What a rate is made of, and the machine's other readings.
class MachineLook {
 public:
  MachineLook(SamplingSources sources, const Clock& clock, std::optional<std::string> preferred)
      : sources_(std::move(sources)),
        preferred_(std::move(preferred)),
        cpu_(*sources_.ticks, clock),
        network_(*sources_.network, clock) {
    (void)cpu_.sample();
    (void)network_.sample(preferred_);
  }

  [[nodiscard]] MetricSnapshot finish(Diagnosis& diagnosis) {
    MetricSnapshot snapshot;
    snapshot.samples.set(MetricID::cpuUsage, cpu_.sample());
    const NetworkRates rates = network_.sample(preferred_);
    snapshot.samples.set(MetricID::upload, rates.upload);
    snapshot.samples.set(MetricID::download, rates.download);
    snapshot.networkName = rates.name;
    diagnosis.links.devices = linkReports(*sources_.network, preferred_, rates.name);
    if (diagnosis.links.devices.empty()) {
      diagnosis.links.why = "o sistema não mostra interfaces de rede";
    }
    const BatteryReadings battery = sources_.battery->read();
    snapshot.samples.set(MetricID::batteryPercent, battery.percentage);
    snapshot.samples.set(MetricID::batteryTime, battery.duration);
    snapshot.samples.set(MetricID::adapterWatts, battery.adapterWatts);
    snapshot.batteryOnAC = battery.onAC;
    snapshot.batteryCharging = battery.charging;
    diagnosis.supplies.why = "o sistema informa as leituras, e não os aparelhos";
    sources_.sensors->configure(sensorMetrics);
    const SampleTable sensors = sources_.sensors->sample(sensorMetrics);
    for (const MetricID metric : sensors.metrics()) {
      snapshot.samples.set(metric, *sensors.find(metric));
    }
    sources_.sensors->reset();
    diagnosis.sensors.why = "o controlador da máquina não lista os seus sensores";
    return snapshot;
  }

 private:
  const SamplingSources sources_;
  const std::optional<std::string> preferred_;
  CPUCollector cpu_;
  NetworkCollector network_;
};

}  // namespace

int diagnose(MacOSApplication& application, const DiagnoseOptions& options) {
  MacOSApplication::Insides insides = application.insides();
  const ConfigurationStore store(insides.applicationSupport);
  const AppConfiguration configuration = store.load().configuration;
  Diagnosis diagnosis;
  diagnosis.program = options.program;
  diagnosis.version = programVersion;
  diagnosis.system = systemText();
  diagnosis.session = "gráfica";
  diagnosis.bus = "não há um neste sistema";
  diagnosis.agent = SingleAgent::isRunning(insides.applicationSupport / "Vantora")
                        ? AgentPresence::running
                        : AgentPresence::none;
  diagnosis.item.panel = "barra de menus";
  diagnosis.item.form = "imagem inteira";
  diagnosis.item.formWhy = "a barra mantém a largura da imagem";
  diagnosis.typefaceWhy = "é a do sistema, que o AppKit escolhe";
  diagnosis.libraries = {{"libuv", uv_version_string()}};

  MachineLook machine(application.samplingSources(), insides.clock, configuration.networkInterface);
  AssistantReport codex = findAssistant("Codex CLI", insides.defaults.text(codexExecutablePathKey),
                                        CodexExecutablePlaces::onMacOS());
  AssistantReport claude =
      findAssistant("Claude Code", std::nullopt, ClaudeExecutablePlaces::onMacOS(insides.home));
  int pending = 1;  // the distance between the two readings
  const auto finished = [&pending] {
    if (--pending == 0) {
      CFRunLoopStop(CFRunLoopGetMain());
    }
  };
  std::vector<std::unique_ptr<VersionQuestion>> questions;
  for (AssistantReport* report : {&codex, &claude}) {
    if (report->path && !report->version) {
      ++pending;
      questions.push_back(std::make_unique<VersionQuestion>(
          insides.launcher, insides.mainQueue,
          AssistantExecutable{*report->path, report->foundPath},
          [report, &finished](std::optional<std::string> version) {
            report->version = std::move(version);
            finished();
          }));
    }
  }
  const TimerHandle distance = insides.mainQueue.runAfter(minDistance, Seconds{0}, finished);
  CFRunLoopRun();

  const MetricSnapshot own = machine.finish(diagnosis);
  diagnosis.at = insides.clock.now();
  diagnosis.readings = readingsOf(own, diagnosis.report, diagnosis.at);
  addQuotas(configuration, diagnosis.report, codex, claude);
  diagnosis.assistants = {std::move(codex), std::move(claude)};
  diagnosis.configuration = configurationFile(store.fileURL());
  diagnosis.backup = configurationFile(store.backupURL());
  diagnosis.loginItem = loginItemText(insides.loginItem.status());
  const Concealer conceal(spellingsOf(insides.home));
  return give(options.program, {0, options.asJson ? diagnosisJson(diagnosis, conceal) + '\n'
                                                  : diagnosisText(diagnosis, conceal)});
}

}  // namespace vantora
