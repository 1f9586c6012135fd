// SPDX-License-Identifier: MIT
#pragma once

#include "app/diagnosis/concealer.hpp"
#include "app/diagnosis/diagnosis.hpp"
#include "support/example_time.hpp"

namespace vantora::test {

/// Knows the home of the laptop's user.
inline const Concealer laptopConcealer({"/home/maria"});

/// What a laptop with a running agent gives.
inline Diagnosis laptopDiagnosis() {
  Diagnosis diagnosis;
  diagnosis.program = "vantora";
  diagnosis.version = "0.1.0";
  diagnosis.at = exampleTime;
  diagnosis.system = "Debian GNU/Linux 12 (bookworm); Linux 6.1.0-28-amd64 x86_64";
  diagnosis.session = "X11";
  diagnosis.desktop = "XFCE";
  diagnosis.bus = "da sessão, conectado";
  diagnosis.agent = AgentPresence::answered;
  AgentReport report;
  report.version = "0.1.0";
  report.running = Seconds{7500};
  report.item = {"Plasma",
                 "kded5",
                 "quadrado com um módulo",
                 "este painel põe todo item em um quadrado",
                 "16 a 48 pixels de lado, à escolha do painel",
                 "clara",
                 "o ambiente prefere cores escuras"};
  report.shown = "7% 61°C | 80% 2:10";
  diagnosis.item = report.item;
  diagnosis.typeface = "Inter Medium";
  diagnosis.monospaced = "DejaVu Sans Mono Book";
  for (int number = 1; number <= 5; ++number) {
    diagnosis.sensors.devices.push_back({.name = "coretemp",
                                         .driver = "coretemp",
                                         .channel = "temp" + std::to_string(number),
                                         .label = "Core",
                                         .state = "",
                                         .feeds = {MetricID::cpuTemperature},
                                         .why = ""});
  }
  diagnosis.sensors.devices.push_back({.name = "thinkpad",
                                       .driver = "thinkpad_hwmon",
                                       .channel = "fan1",
                                       .label = "",
                                       .state = "",
                                       .feeds = {MetricID::fan1RPM, MetricID::fan1Percent},
                                       .why = ""});
  for (const char* chip : {"acpitz", "nvme"}) {
    diagnosis.sensors.devices.push_back({.name = chip,
                                         .driver = "",
                                         .channel = "temp1",
                                         .label = "",
                                         .state = "",
                                         .feeds = {},
                                         .why = "não medem a CPU nem a bateria"});
  }
  diagnosis.supplies.devices = {{.name = "BAT0",
                                 .driver = "battery",
                                 .channel = "",
                                 .label = "",
                                 .state = "bateria, descarregando",
                                 .feeds = {MetricID::batteryPercent, MetricID::batteryTime},
                                 .why = ""},
                                {.name = "hid-0018-battery",
                                 .driver = "",
                                 .channel = "",
                                 .label = "",
                                 .state = "",
                                 .feeds = {},
                                 .why = "não é desta máquina"}};
  diagnosis.links.devices = {{.name = "wlp3s0",
                              .driver = "iwlwifi",
                              .channel = "",
                              .label = "",
                              .state = "",
                              .feeds = {MetricID::upload, MetricID::download},
                              .why = ""},
                             {.name = "enx00e04c680001",
                              .driver = "r8152",
                              .channel = "",
                              .label = "",
                              .state = "",
                              .feeds = {},
                              .why = "não tem endereço"}};
  diagnosis.readings = {
      {MetricID::cpuUsage, Quality::valid, "7%", "Linux /proc/stat"},
      {MetricID::fan2Percent, Quality::unavailable, "—", "Ventoinha 2 não existe nesta máquina"},
      {MetricID::fan2RPM, Quality::unavailable, "—", "Ventoinha 2 não existe nesta máquina"},
      {MetricID::batteryTemperature, Quality::unavailable, "—",
       "Linux power_supply · bateria interna sem sensor de temperatura"}};
  report.readings = diagnosis.readings;
  AssistantReport codex;
  codex.name = "Codex CLI";
  codex.isWanted = codex.isShown = true;
  codex.path = "/home/maria/.npm-global/lib/node_modules/@openai/codex/bin/codex.js";
  codex.foundPath = "/home/maria/.npm-global/bin/codex";
  codex.version = "0.63.0";
  codex.quota = {"ready", "", diagnosis.at - std::chrono::minutes(3),
                 diagnosis.at + std::chrono::minutes(7)};
  report.codex = *codex.quota;
  AssistantReport claude;
  claude.name = "Claude Code";
  claude.isWanted = claude.isShown = true;
  claude.quota = {"dependencyMissing", "Claude Code (claude) não encontrado.", std::nullopt,
                  std::nullopt};
  report.claude = *claude.quota;
  diagnosis.assistants = {codex, claude};
  diagnosis.report = report;
  diagnosis.configuration = {"/home/maria/.config/Vantora/configuration.json",
                             FileReport::State::good, diagnosis.at - std::chrono::hours(80)};
  diagnosis.backup = {"/home/maria/.config/Vantora/configuration.backup.json",
                      FileReport::State::absent, std::nullopt};
  diagnosis.loginItem = "o Vantora inicia com a sessão";
  diagnosis.libraries = {{"libuv", "1.44.2"}, {"glibc", "2.36"}};
  return diagnosis;
}

}  // namespace vantora::test
