// SPDX-License-Identifier: MIT
#include "model/metric.hpp"

#include "model/words.hpp"

namespace vantora {
namespace {

struct Entry {
  std::string_view id;
  const char* title;
  std::optional<MetricFamily> family;
  bool isFan;
  std::string_view reservedText;
};

using enum MetricFamily;

constexpr std::array<Entry, metricCount> catalogue{{
    {"none", "Linha vazia", std::nullopt, false, ""},
    {"batteryPercent", "Bateria · porcentagem", battery, false, "100%"},
    {"batteryTime", "Bateria · tempo estimado", battery, false, "166:39"},
    {"batteryTemperature", Words::batteryTemperatureTitle, sensors, false, "999°C"},
    {"upload", "Rede · upload", network, false, "0,99M"},
    {"download", "Rede · download", network, false, "0,99M"},
    {"cpuUsage", "CPU · uso total", cpu, false, "100%"},
    {"cpuTemperature", Words::cpuTemperatureTitle, sensors, false, "999°C"},
    {"fan1Percent", Words::fan1PercentTitle, sensors, true, "100%"},
    {"fan2Percent", Words::fan2PercentTitle, sensors, true, "100%"},
    {"fan1RPM", Words::fan1RPMTitle, sensors, true, "99999"},
    {"fan2RPM", Words::fan2RPMTitle, sensors, true, "99999"},
    {"adapterWatts", "Adaptador · potência informada", battery, false, ">9999W"},
    {"inputWatts", Words::inputWattsTitle, std::nullopt, false, ">9999W"},
    {"batteryChargeWatts", "Bateria · potência de carga (não validada)", std::nullopt, false,
     ">9999W"},
    {"codexWeeklyPercent", "Codex · cota semanal (%)", codex, false, "100%*"},
    {"codexWeeklyReset", "Codex · tempo até renovar", codex, false, "14h59m"},
    {"claudeWeeklyPercent", "Claude · cota semanal (%)", claude, false, "100%*"},
    {"claudeSessionPercent", "Claude · janela de 5 horas (%)", claude, false, "100%*"},
}};
// A line that is missing would be an empty one at the end.
static_assert(!catalogue.back().id.empty());

const Entry& entry(MetricID metric) {
  return catalogue[static_cast<std::size_t>(metric)];
}

}  // namespace

std::string_view id(MetricID metric) {
  return entry(metric).id;
}

std::optional<MetricID> metricFromId(std::string_view id) {
  for (const MetricID metric : allMetrics) {
    if (entry(metric).id == id) {
      return metric;
    }
  }
  return std::nullopt;
}

std::string_view title(MetricID metric) {
  return entry(metric).title;
}

std::optional<MetricFamily> family(MetricID metric) {
  return entry(metric).family;
}

bool isFan(MetricID metric) {
  return entry(metric).isFan;
}

std::string_view reservedText(MetricID metric) {
  return entry(metric).reservedText;
}

MetricSet metricsOfFamily(MetricSet metrics, MetricFamily wanted) {
  MetricSet result;
  for (const MetricID metric : metrics) {
    if (family(metric) == wanted) {
      result.insert(metric);
    }
  }
  return result;
}

}  // namespace vantora
