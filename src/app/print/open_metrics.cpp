// SPDX-License-Identifier: MIT
#include "app/print/open_metrics.hpp"

#include <cmath>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "model/json.hpp"
#include "model/utf8.hpp"
#include "model/version.hpp"

namespace vantora::OpenMetrics {
namespace {

using Labels = std::initializer_list<std::pair<std::string_view, std::string_view>>;

std::string quoted(std::string_view value) {
  std::string text = "\"";
  for (const char character : repairedUtf8(value)) {
    if (character == '\n') {
      text += "\\n";
      continue;
    }
    if (character == '"' || character == '\\') {
      text += '\\';
    }
    text += character;
  }
  return text + '"';
}

// The shortest digits that give the same number again, without a locale.
std::string number(double value) {
  return value == std::floor(value) && std::abs(value) < 1e15
             ? std::to_string(static_cast<long long>(value))
             : writeJsonLossy(Json(value));
}

// Divided, because 57 * 0.01 is not 0.57.
std::optional<double> share(std::optional<double> percent) {
  return percent ? std::optional(*percent / 100) : std::nullopt;
}

std::optional<double> inSeconds(std::optional<double> minutes) {
  return minutes ? std::optional(*minutes * 60) : std::nullopt;
}

double unixTime(WallTime instant) {
  return std::floor(secondsBetween(wallTimeFromUnix(0), instant).count());
}

/// One family: its head, and a line for each reading that there is.
class Family {
 public:
  /// `unit` is the end of the name, or empty for a number without one.
  Family(std::string_view name, std::string_view unit, std::string_view help)
      : name_("vantora_" + std::string(name)) {
    const std::string head = name_ + ' ';
    head_ = "# HELP " + head + std::string(help) + "\n# TYPE " + head + "gauge\n";
    if (!unit.empty()) {
      head_ += "# UNIT " + head + std::string(unit) + '\n';
    }
  }

  Family& add(std::optional<double> value, Labels labels = {}) {
    if (!value || !std::isfinite(*value)) {
      return *this;
    }
    std::string list;
    for (const auto& [label, content] : labels) {
      list += (list.empty() ? "" : ",") + std::string(label) + '=' + quoted(content);
    }
    lines_ += name_ + (list.empty() ? "" : '{' + list + '}') + ' ' + number(*value) + '\n';
    return *this;
  }

  [[nodiscard]] std::string text() const { return lines_.empty() ? "" : head_ + lines_; }

 private:
  std::string name_;
  std::string head_;
  std::string lines_;
};

class Writer {
 public:
  explicit Writer(const PrintReport& report) : snapshot_(report.snapshot), report_(report) {}

  std::string text() {
    machine();
    battery();
    quotas();
    ages();
    add(Family("build_info", {}, "Always 1; the version that reports.")
            .add(1, {{"version", programVersion}}));
    return text_ + "# EOF\n";
  }

 private:
  void add(const Family& family) { text_ += family.text(); }

  /// In the metric's own unit; nothing where there is no reading.
  [[nodiscard]] std::optional<double> reading(MetricID metric) const {
    const MetricSample& sample = snapshot_[metric];
    return sample.quality == Quality::valid ? sample.value : std::nullopt;
  }

  void machine() {
    add(Family("cpu_usage_ratio", "ratio", "Share of all processor time that was not idle.")
            .add(share(reading(MetricID::cpuUsage))));
    add(Family("cpu_temperature_celsius", "celsius", "The hottest of the processor's sensors.")
            .add(reading(MetricID::cpuTemperature)));
    const std::string link = snapshot_.networkName.value_or("");
    add(Family("network_receive_bytes_per_second", "bytes_per_second",
               "Rate received on the link that is shown.")
            .add(reading(MetricID::download), {{"interface", link}}));
    add(Family("network_transmit_bytes_per_second", "bytes_per_second",
               "Rate sent on the link that is shown.")
            .add(reading(MetricID::upload), {{"interface", link}}));
    add(Family("fan_speed_ratio", "ratio", "Speed as a share of the fan's greatest.")
            .add(share(reading(MetricID::fan1Percent)), {{"fan", "1"}})
            .add(share(reading(MetricID::fan2Percent)), {{"fan", "2"}}));
    add(Family("fan_speed_rpm", "rpm", "Speed in revolutions per minute.")
            .add(reading(MetricID::fan1RPM), {{"fan", "1"}})
            .add(reading(MetricID::fan2RPM), {{"fan", "2"}}));
    add(Family("adapter_power_watts", "watts", "What the power adapter can give.")
            .add(reading(MetricID::adapterWatts)));
  }

  void battery() {
    const auto charge = share(reading(MetricID::batteryPercent));
    add(Family("battery_charge_ratio", "ratio", "Charge as a share of a full battery.")
            .add(charge));
    add(Family("battery_remaining_seconds", "seconds",
               "Time until the battery is empty, or full while it charges.")
            .add(inSeconds(reading(MetricID::batteryTime))));
    add(Family("battery_temperature_celsius", "celsius", "Temperature of the battery.")
            .add(reading(MetricID::batteryTemperature)));
    if (charge) {
      add(Family("battery_charging", {}, "1 while the battery charges, else 0.")
              .add(snapshot_.batteryCharging ? 1 : 0));
      add(Family("battery_external_power", {}, "1 while the machine runs on an adapter, else 0.")
              .add(snapshot_.batteryOnAC ? 1 : 0));
    }
  }

  void quotas() {
    const CodexQuotaState& codex = snapshot_.codex;
    const ClaudeQuotaState& claude = snapshot_.claude;
    const auto instant = [](std::optional<WallTime> time) {
      return time ? std::optional(unixTime(*time)) : std::nullopt;
    };
    Family used("quota_used_ratio", "ratio", "Used share of an assistant's quota.");
    Family reset("quota_reset_timestamp_seconds", "seconds", "When the quota begins anew.");
    Family asked("quota_updated_timestamp_seconds", "seconds", "When the quota was last read.");
    Family status("quota_status", {}, "Always 1; how the last query of the quota ended.");
    if (codex.isPresentable(report_.now)) {
      used.add(share(codex.usedPercent), {{"assistant", "codex"}, {"window", "weekly"}});
      reset.add(instant(codex.resetAt), {{"assistant", "codex"}, {"window", "weekly"}});
      asked.add(instant(codex.lastSuccess), {{"assistant", "codex"}});
    }
    if (claude.isPresentable(report_.now)) {
      used.add(share(claude.weeklyUsed), {{"assistant", "claude"}, {"window", "weekly"}})
          .add(share(claude.sessionUsed), {{"assistant", "claude"}, {"window", "five_hours"}});
      reset.add(instant(claude.weeklyResetAt), {{"assistant", "claude"}, {"window", "weekly"}})
          .add(instant(claude.sessionResetAt), {{"assistant", "claude"}, {"window", "five_hours"}});
      asked.add(instant(claude.lastSuccess), {{"assistant", "claude"}});
    }
    if (codex.status != CodexQuotaStatus::disabled) {
      status.add(1, {{"assistant", "codex"}, {"status", rawText(codex.status)}});
    }
    if (claude.status != ClaudeQuotaStatus::disabled) {
      status.add(1, {{"assistant", "claude"}, {"status", rawText(claude.status)}});
    }
    add(used);
    add(reset);
    add(asked);
    add(status);
  }

  // Instants, because an age would be wrong as soon as it is written.
  void ages() {
    Family sampled("sample_timestamp_seconds", "seconds", "When the reading was taken.");
    for (const MetricID metric : allReadings()) {
      const MetricSample& sample = snapshot_[metric];
      if (reading(metric) && sample.sampledAt) {
        sampled.add(unixTime(*sample.sampledAt), {{"metric", id(metric)}});
      }
    }
    add(sampled);
  }

  const MetricSnapshot& snapshot_;
  const PrintReport& report_;
  std::string text_;
};

}  // namespace

MetricSet allReadings() {
  MetricSet metrics;
  for (const MetricID metric : allMetrics) {
    if (family(metric)) {
      metrics.insert(metric);
    }
  }
  return metrics;
}

std::string text(const PrintReport& report) {
  return Writer(report).text();
}

}  // namespace vantora::OpenMetrics
