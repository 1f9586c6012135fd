// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <string_view>
#include <utility>
#include <vector>

#include "app/cells.hpp"
#include "app/diagnosis/diagnosis_rows.hpp"

namespace vantora {
namespace {

constexpr const char* arrow = " → ";
constexpr const char* dash = "—";

std::string joined(const std::string& left, const char* separator, const std::string& right) {
  return left.empty() || right.empty() ? left + right : left + separator + right;
}

std::string because(const std::string& what, const std::string& why) {
  return joined(what, ", porque ", why);
}

std::string ago(WallTime then, WallTime now) {
  const Seconds span = secondsBetween(then, now);
  return span < Seconds{60} ? "agora" : "há " + spanText(span);
}

std::string agentText(const Diagnosis& diagnosis) {
  switch (diagnosis.agent) {
    case AgentPresence::answered: {
      const AgentReport& report = *diagnosis.report;
      const std::string paused = report.isPaused ? "; leituras pausadas" : "";
      return "em execução (" + report.version + ") há " + spanText(report.running) + paused;
    }
    case AgentPresence::none:
      return "nenhum em execução nesta sessão; o que segue foi visto agora, sem ele";
    case AgentPresence::noBus:
      return "não se sabe: sem o barramento da sessão não há como perguntar";
    case AgentPresence::older:
      return "em execução, mas de uma versão que não responde a esta pergunta";
    case AgentPresence::silent:
      return "em execução, mas não respondeu em 2 s; o que segue foi visto agora, sem ele";
    case AgentPresence::garbled:
      return "em execução, mas a resposta não pôde ser lida (é da mesma versão?)";
    case AgentPresence::running:
      return "em execução; neste sistema ele não responde a perguntas";
  }
  return {};
}

void addSession(const Diagnosis& diagnosis, DiagnosisRows& rows) {
  rows.begin("Sessão");
  rows.add("sistema", diagnosis.system);
  rows.add("tipo", joined(diagnosis.session, " · ", diagnosis.desktop));
  rows.add("barramento", diagnosis.bus);
}

void addItem(const Diagnosis& diagnosis, DiagnosisRows& rows) {
  const StatusItemReport& item = diagnosis.item;
  rows.begin("Item");
  rows.add("agente", agentText(diagnosis));
  const bool isSame = item.panel == item.program || item.program.empty();
  rows.add("painel", isSame ? item.panel : item.panel + " (processo " + item.program + ")");
  const bool isSeen = diagnosis.report.has_value();
  rows.add(isSeen ? "forma" : "forma prevista", because(item.form, item.formWhy));
  rows.add("escala", item.scale);
  rows.add("tinta", because(item.ink, item.inkWhy));
  const bool isOne = diagnosis.typeface == diagnosis.monospaced;
  rows.add("letra", !diagnosis.typefaceWhy.empty() ? std::string(dash) + ' ' + diagnosis.typefaceWhy
                    : isOne                        ? diagnosis.typeface
                            : diagnosis.typeface + " e, para taxas, " + diagnosis.monospaced);
  if (diagnosis.report) {
    rows.add("mostra", diagnosis.report->shown.empty() ? "VA (nenhum módulo ativo)"
                                                       : diagnosis.report->shown);
  }
}

struct ChannelNumber {
  std::string kind;
  int number = -1;
};

ChannelNumber numberOf(const std::string& channel) {
  const std::size_t digits = channel.find_first_of("0123456789");
  ChannelNumber result{channel.substr(0, digits)};
  if (digits != std::string::npos) {
    const char* end = channel.data() + channel.size();
    const auto [stop, error] = std::from_chars(channel.data() + digits, end, result.number);
    if (error != std::errc() || stop != end) {
      result = {channel};
    }
  }
  return result;
}

// "temp1–temp5, fan1" of channels in their order.
std::string channelsText(const std::vector<std::string>& channels) {
  std::string text;
  for (std::size_t first = 0; first < channels.size();) {
    std::size_t last = first;
    const ChannelNumber start = numberOf(channels[first]);
    while (last + 1 < channels.size() && start.number >= 0) {
      const ChannelNumber next = numberOf(channels[last + 1]);
      if (next.kind != start.kind ||
          next.number != start.number + static_cast<int>(last + 1 - first)) {
        break;
      }
      ++last;
    }
    text = joined(text, ", ", channels[first]);
    if (last > first) {
      text += (last == first + 1 ? ", " : "–") + channels[last];
    }
    first = last + 1;
  }
  return text;
}

std::string withDriver(const DeviceReport& device) {
  return device.driver.empty() || device.driver == device.name
             ? device.name
             : device.name + " (" + device.driver + ")";
}

struct Group {
  const DeviceReport* first;
  std::vector<std::string> channels;
};

// Neighbours that go to the same place, together.
std::vector<Group> groupsOf(const std::vector<DeviceReport>& devices) {
  std::vector<Group> groups;
  for (const DeviceReport& device : devices) {
    const bool isSame = !groups.empty() && groups.back().first->name == device.name &&
                        groups.back().first->driver == device.driver &&
                        groups.back().first->feeds == device.feeds &&
                        groups.back().first->why == device.why;
    if (!isSame) {
      groups.push_back({&device, {}});
    }
    auto& channels = groups.back().channels;
    if (!device.channel.empty() &&
        std::find(channels.begin(), channels.end(), device.channel) == channels.end()) {
      channels.push_back(device.channel);
    }
  }
  return groups;
}

// What feeds a metric has a row of its own; the rest has one for each reason.
void addDevices(const char* group, const DeviceList& list, DiagnosisRows& rows) {
  rows.begin(group);
  rows.add("", list.why.empty() ? "" : std::string(dash) + ' ' + list.why);
  std::vector<std::pair<std::string, std::string>> unused;  // the reason, and what has it
  for (const Group& entry : groupsOf(list.devices)) {
    const DeviceReport& device = *entry.first;
    const std::string channels = channelsText(entry.channels);
    if (!device.feeds.empty()) {
      const std::string driver =
          device.driver.empty() || device.driver == device.name ? "" : "(" + device.driver + ")";
      const std::string use = joined(joined(driver, " ", joined(channels, ", ", device.state)),
                                     arrow, titlesOf(device.feeds));
      const bool fits = cellCount(device.name) <= DiagnosisRows::maxAbout;
      rows.add(fits ? device.name : "", fits ? use : joined(device.name, ": ", use));
      continue;
    }
    auto place = std::find_if(unused.begin(), unused.end(),
                              [&](const auto& other) { return other.first == device.why; });
    if (place == unused.end()) {
      place = unused.insert(unused.end(), {device.why, ""});
    }
    std::string what = joined(withDriver(device), " ", channels);
    if (place->second != what && !place->second.ends_with("; " + what)) {
      place->second = joined(place->second, "; ", what);
    }
  }
  for (const auto& [why, what] : unused) {
    rows.add("sem uso", joined(what, ": ", why));
  }
}

// Without the system's interface that it was asked of: "Linux hwmon · x" is "x".
std::string reasonOf(const std::string& source) {
  constexpr std::string_view separator = " · ";
  const std::size_t end = source.find(separator);
  return source.starts_with("Linux ") && end != std::string::npos
             ? source.substr(end + separator.size())
             : source;
}

void addReadings(const Diagnosis& diagnosis, DiagnosisRows& rows) {
  rows.begin("Leituras");
  std::string values;
  std::vector<std::pair<std::string, MetricSet>> missing;  // by their reasons
  for (const ReadingReport& reading : diagnosis.readings) {
    if (reading.quality == Quality::valid) {
      values = joined(values, "; ", std::string(title(reading.metric)) + ' ' + reading.text);
      continue;
    }
    const std::string why = reasonOf(reading.source);
    auto place = std::find_if(missing.begin(), missing.end(),
                              [&](const auto& other) { return other.first == why; });
    if (place == missing.end()) {
      place = missing.insert(missing.end(), {why, {}});
    }
    place->second.insert(reading.metric);
  }
  rows.add("com valor", values);
  for (const auto& [why, metrics] : missing) {
    rows.add("falta", titlesOf(metrics) + ": " + why);
  }
}

std::string executableText(const AssistantReport& assistant) {
  if (!assistant.path) {
    return assistant.chosen ? "o arquivo escolhido não pode ser executado: " + *assistant.chosen
                            : "não encontrado nos lugares de costume";
  }
  std::string text = *assistant.path;
  text += assistant.version ? ", versão " + *assistant.version : ", versão desconhecida";
  if (assistant.chosen) {
    text += "; escolhido nas configurações";
  } else if (assistant.foundPath != *assistant.path) {
    text += "; achado em " + assistant.foundPath;
  }
  return text;
}

std::string quotaText(const AssistantReport& assistant, WallTime now) {
  if (!assistant.isWanted) {
    return "cota desligada nas configurações";
  }
  if (!assistant.isShown) {
    return "cota ligada, mas nenhum módulo ativo a mostra: não é consultada";
  }
  if (!assistant.quota) {
    return "cota ligada; só um agente em execução sabe como foi a última consulta";
  }
  const QuotaReport& quota = *assistant.quota;
  std::string text = quota.message.empty() ? "cota em dia" : quota.message;
  if (!assistant.path && quota.status == "dependencyMissing") {
    text.clear();  // it was said
  }
  while (text.ends_with('.')) {
    text.pop_back();
  }
  if (quota.lastSuccess) {
    text = joined(text, "; ", "lida " + ago(*quota.lastSuccess, now));
  }
  if (quota.nextQuery) {
    const Seconds span = secondsBetween(now, *quota.nextQuery);
    text = joined(text, "; ",
                  "nova consulta em " + (span < Seconds{60} ? "instantes" : spanText(span)));
  }
  return text;
}

void addQuotas(const Diagnosis& diagnosis, DiagnosisRows& rows) {
  rows.begin("Cotas");
  for (const AssistantReport& assistant : diagnosis.assistants) {
    const std::string executable = executableText(assistant);
    const std::string quota = quotaText(assistant, diagnosis.at);
    if (assistant.path) {
      rows.add(assistant.name, executable);
      rows.add("", quota);
    } else {
      rows.add(assistant.name, joined(executable, "; ", quota));
    }
  }
}

std::string fileText(const FileReport& file, const char* ifAbsent, WallTime now) {
  std::string text;
  switch (file.state) {
    case FileReport::State::absent:
      return ifAbsent;
    case FileReport::State::good:
      text = file.path;
      break;
    case FileReport::State::invalid:
      text = file.path + ": não é uma configuração que possa ser usada";
      break;
    case FileReport::State::unreadable:
      text = file.path + ": não pode ser lido";
      break;
  }
  return file.changed ? text + ", gravado " + ago(*file.changed, now) : text;
}

void addFiles(const Diagnosis& diagnosis, DiagnosisRows& rows) {
  rows.begin("Arquivos");
  rows.add("configuração",
           fileText(diagnosis.configuration, "nenhuma ainda: valem os padrões", diagnosis.at));
  rows.add("cópia anterior", fileText(diagnosis.backup, "nenhuma ainda", diagnosis.at));
  rows.add("ao entrar", diagnosis.loginItem);
}

std::string date(WallTime at) {
  const auto second = std::chrono::system_clock::to_time_t(at);
  std::tm local{};
  std::array<char, 32> text{};
  localtime_r(&second, &local);
  std::strftime(text.data(), text.size(), "%d/%m/%Y %H:%M", &local);
  return text.data();
}

}  // namespace

std::string titlesOf(MetricSet metrics) {
  constexpr std::string_view separator = " · ";
  std::string text;
  std::string_view thing;
  for (const MetricID metric : metrics) {
    const std::string_view whole = title(metric);
    const std::size_t end = whole.find(separator);
    const std::string_view of = whole.substr(0, end);
    if (end != std::string_view::npos && of == thing && !text.empty()) {
      text.append(", ").append(whole.substr(end + separator.size()));
    } else {
      text.append(text.empty() ? "" : "; ").append(whole);
    }
    thing = of;
  }
  return text;
}

std::string spanText(Seconds span) {
  constexpr double minute = 60;
  constexpr double hour = 3600;
  constexpr double day = 86'400;
  const double seconds = span.count();
  if (seconds < minute) {
    return "menos de 1 min";
  }
  if (seconds < hour) {
    return std::to_string(static_cast<int>(seconds / minute)) + " min";
  }
  if (seconds < 2 * day) {
    return std::to_string(static_cast<int>(seconds / hour)) + " h";
  }
  return std::to_string(static_cast<long>(seconds / day)) + " dias";
}

std::string diagnosisText(const Diagnosis& diagnosis, const Concealer& conceal) {
  DiagnosisRows rows(diagnosisColumns, conceal);
  addSession(diagnosis, rows);
  addItem(diagnosis, rows);
  addDevices("Sensores", diagnosis.sensors, rows);
  addDevices("Energia", diagnosis.supplies, rows);
  addDevices("Rede", diagnosis.links, rows);
  addReadings(diagnosis, rows);
  addQuotas(diagnosis, rows);
  addFiles(diagnosis, rows);
  std::string libraries;
  for (const auto& [name, version] : diagnosis.libraries) {
    libraries = joined(libraries, ", ", joined(name, " ", version));
  }
  rows.begin("Bibliotecas");
  rows.add("", libraries);
  std::string text = "Vantora " + diagnosis.version;
  text.append(" · diagnóstico de ").append(date(diagnosis.at));
  text.append(" (").append(diagnosis.program).append(")\n\n");
  return text.append(rows.text());
}

}  // namespace vantora
