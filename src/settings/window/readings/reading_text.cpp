// SPDX-License-Identifier: MIT
#include "settings/window/readings/reading_text.hpp"

#include <QDateTime>
#include <algorithm>
#include <chrono>

#include "settings/window/controls/qt_text.hpp"
#include "status/metric_formatter.hpp"

namespace vantora::ReadingText {

QString shortName(MetricID metric) {
  const auto text = [metric]() -> const char* {
    switch (metric) {
      case MetricID::none:
        return "Linha vazia";
      case MetricID::batteryPercent:
        return "Bateria";
      case MetricID::batteryTime:
        return "Bateria · tempo";
      case MetricID::batteryTemperature:
        return "Bateria · °C";
      case MetricID::upload:
        return "Upload";
      case MetricID::download:
        return "Download";
      case MetricID::cpuUsage:
        return "CPU";
      case MetricID::cpuTemperature:
        return "CPU · °C";
      case MetricID::fan1Percent:
        return "Ventoinha 1 · %";
      case MetricID::fan2Percent:
        return "Ventoinha 2 · %";
      case MetricID::fan1RPM:
        return "Ventoinha 1 · RPM";
      case MetricID::fan2RPM:
        return "Ventoinha 2 · RPM";
      case MetricID::adapterWatts:
        return "Adaptador";
      case MetricID::inputWatts:
        return "Entrada";
      case MetricID::batteryChargeWatts:
        return "Carga da bateria";
      case MetricID::codexWeeklyPercent:
        return "Codex · semanal";
      case MetricID::codexWeeklyReset:
        return "Codex · renovação";
      case MetricID::claudeWeeklyPercent:
        return "Claude · semanal";
      case MetricID::claudeSessionPercent:
        return "Claude · 5 horas";
    }
    return "";
  };
  return qtText(text());
}

QString moduleName(const ModuleConfiguration& module) {
  if (module.top == MetricID::none || module.top == module.bottom) {
    return shortName(module.bottom);
  }
  if (module.bottom == MetricID::none) {
    return shortName(module.top);
  }
  return shortName(module.top) + QStringLiteral(" e ") + shortName(module.bottom);
}

const MetricReading* find(const std::vector<MetricReading>& readings, MetricID metric) {
  const auto found =
      std::find_if(readings.begin(), readings.end(),
                   [metric](const MetricReading& reading) { return reading.metric == metric; });
  return found != readings.end() ? &*found : nullptr;
}

QString line(const MetricReading& reading) {
  QString text = qtText(reading.text);
  if (reading.reason.empty()) {
    return text;
  }
  const bool isDash = !MetricFormatter::isReading(reading.text);
  return text + (isDash ? QStringLiteral(" ") : QStringLiteral(" · ")) + qtText(reading.reason);
}

QString details(const MetricReading& reading) {
  QString text = line(reading);
  if (!reading.source.empty() && reading.source != reading.reason) {
    text += QStringLiteral("\nFonte: ") + qtText(reading.source);
  }
  // The time of a fresh reading is now.
  if (reading.quality != Quality::valid && reading.sampledAt) {
    text += qtText("\nÚltima leitura: ") + time(reading.sampledAt);
  }
  return text;
}

QString time(const std::optional<WallTime>& instant) {
  if (!instant) {
    return qtText("—");
  }
  using std::chrono::milliseconds;
  const auto sinceEpoch = std::chrono::floor<milliseconds>(instant->time_since_epoch());
  return QDateTime::fromMSecsSinceEpoch(sinceEpoch.count())
      .toString(QStringLiteral("dd/MM/yyyy HH:mm:ss"));
}

bool isMissing(const MetricReading& reading) {
  const auto wanted = family(reading.metric);
  return reading.quality == Quality::unavailable && wanted != MetricFamily::codex &&
         wanted != MetricFamily::claude;
}

}  // namespace vantora::ReadingText
