// SPDX-License-Identifier: MIT
#include "app/print/print_report.hpp"

#include <algorithm>
#include <vector>

#include "app/print/cells.hpp"
#include "app/print/iso_date.hpp"
#include "model/json.hpp"
#include "status/metric_formatter.hpp"

namespace vantora::PrintFormatter {
namespace {

// What the picture shows, too, when no module is visible.
constexpr const char* emptyMark = "VA";

struct Column {
  const ModuleConfiguration* module;
  std::string top;
  std::string bottom;
};

std::vector<Column> visibleColumns(const PrintReport& report) {
  std::vector<Column> columns;
  for (const ModuleConfiguration& module : report.configuration.modules) {
    if (module.isVisible(report.snapshot)) {
      columns.push_back({&module, MetricFormatter::text(module.top, report.snapshot, report.now),
                         MetricFormatter::text(module.bottom, report.snapshot, report.now)});
    }
  }
  return columns;
}

std::string joined(const Column& column) {
  if (column.top.empty() || column.bottom.empty()) {
    return column.top + column.bottom;
  }
  return column.top + " " + column.bottom;
}

std::string cutToCells(std::string text, std::size_t most) {
  std::size_t seen = 0;
  for (std::size_t index = 0; index < text.size(); ++index) {
    if (beginsCharacter(text[index]) && seen++ == most) {
      text.resize(index);
      break;
    }
  }
  return text;
}

std::string escapedForMarkup(std::string_view text) {
  std::string escaped;
  for (const char character : text) {
    switch (character) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      default:
        escaped += character;
    }
  }
  return escaped;
}

template <typename T>
Json orNull(const std::optional<T>& value) {
  return value ? Json(*value) : Json(nullptr);
}

Json dateOrNull(const std::optional<WallTime>& date) {
  return date ? Json(isoDate(*date)) : Json(nullptr);
}

Json line(MetricID metric, const std::string& text) {
  return {{"metric", id(metric)}, {"text", text}};
}

Json samplesJson(const PrintReport& report) {
  Json samples = Json::object();
  for (const MetricID metric : report.configuration.demand()) {
    const MetricSample& sample = report.snapshot[metric];
    samples[std::string(id(metric))] = {{"value", orNull(sample.value)},
                                        {"quality", rawText(sample.quality)},
                                        {"source", sample.source},
                                        {"sampledAt", dateOrNull(sample.sampledAt)}};
  }
  return samples;
}

Json codexJson(const CodexQuotaState& state) {
  Json candidates = Json::array();
  for (const CodexQuotaCandidate& candidate : state.candidates) {
    candidates.push_back({{"id", candidate.id}, {"name", orNull(candidate.name)}});
  }
  return {{"status", rawText(state.status)},
          {"usedPercent", orNull(state.usedPercent)},
          {"resetAt", dateOrNull(state.resetAt)},
          {"lastSuccess", dateOrNull(state.lastSuccess)},
          {"limitID", orNull(state.limitID)},
          {"candidates", std::move(candidates)},
          {"message", state.message},
          {"ordinaryUsageAllowed", orNull(state.ordinaryUsageAllowed)},
          {"accountID", orNull(state.accountID)},
          {"settings",
           {{"enabled", state.settings.enabled},
            {"intervalMinutes", state.settings.intervalMinutes},
            {"selectedLimitID", orNull(state.settings.selectedLimitID)},
            {"showUsed", state.settings.showUsed},
            {"oneDecimal", state.settings.oneDecimal},
            {"showResetDate", state.settings.showResetDate}}}};
}

Json claudeJson(const ClaudeQuotaState& state) {
  return {{"status", rawText(state.status)},
          {"weeklyUsed", orNull(state.weeklyUsed)},
          {"weeklyResetAt", dateOrNull(state.weeklyResetAt)},
          {"sessionUsed", orNull(state.sessionUsed)},
          {"sessionResetAt", dateOrNull(state.sessionResetAt)},
          {"lastSuccess", dateOrNull(state.lastSuccess)},
          {"message", state.message},
          {"settings",
           {{"enabled", state.settings.enabled},
            {"intervalMinutes", state.settings.intervalMinutes},
            {"showUsed", state.settings.showUsed},
            {"oneDecimal", state.settings.oneDecimal}}}};
}

// The texts are ours and UTF-8; only an interface or a category may carry other bytes,
// which then show as the replacement character.
std::string written(const Json& value) {
  return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

}  // namespace

std::string textLine(const PrintReport& report) {
  std::string text;
  for (const Column& column : visibleColumns(report)) {
    if (!text.empty()) {
      text += " | ";
    }
    text += joined(column);
  }
  return text.empty() ? emptyMark : text;
}

std::string textColumns(const PrintReport& report, std::size_t columns) {
  std::string top;
  std::string bottom;
  for (const Column& column : visibleColumns(report)) {
    const std::size_t width = std::max(cellCount(column.top), cellCount(column.bottom));
    const auto append = [&](std::string& line, const std::string& text) {
      if (!line.empty()) {
        line += "  ";
      }
      line.append(width - cellCount(text), ' ');
      line += text;
    };
    append(top, column.top);
    append(bottom, column.bottom);
  }
  if (top.empty() && bottom.empty()) {
    top = emptyMark;
  }
  return cutToCells(std::move(top), columns) + "\n" + cutToCells(std::move(bottom), columns);
}

std::string jsonLine(const PrintReport& report) {
  Json modules = Json::array();
  for (const Column& column : visibleColumns(report)) {
    modules.push_back({{"id", column.module->id.text()},
                       {"top", line(column.module->top, column.top)},
                       {"bottom", line(column.module->bottom, column.bottom)}});
  }
  const MetricSnapshot& snapshot = report.snapshot;
  return written({{"modules", std::move(modules)},
                  {"samples", samplesJson(report)},
                  {"batteryOnAC", snapshot.batteryOnAC},
                  {"batteryCharging", snapshot.batteryCharging},
                  {"networkName", orNull(snapshot.networkName)},
                  {"codex", codexJson(snapshot.codex)},
                  {"claude", claudeJson(snapshot.claude)},
                  {"accessibilityText", report.presentation.accessibilityText},
                  {"warning", orNull(report.presentation.warning)},
                  {"notice", orNull(report.notice)}});
}

std::string i3barLine(const PrintReport& report) {
  Json blocks = Json::array();
  for (const Column& column : visibleColumns(report)) {
    blocks.push_back({{"name", "vantora"},
                      {"instance", column.module->id.text()},
                      {"full_text", joined(column)},
                      {"markup", "none"}});
  }
  return written(blocks);
}

std::string waybarLine(const PrintReport& report) {
  Json object{{"text", escapedForMarkup(textLine(report))},
              {"tooltip", escapedForMarkup(report.presentation.accessibilityText)},
              {"class", report.configuration.paused ? "paused" : "running"}};
  return written(object);
}

}  // namespace vantora::PrintFormatter
