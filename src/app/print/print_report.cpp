// SPDX-License-Identifier: MIT
#include "app/print/print_report.hpp"

#include "app/iso_date.hpp"
#include "model/json.hpp"
#include "status/line_style.hpp"
#include "status/markup.hpp"
#include "status/status_modules.hpp"

namespace vantora::PrintFormatter {
namespace {

Json lineJson(const StatusLine& line) {
  return {{"metric", id(line.metric)}, {"text", line.text}};
}

Json samplesJson(const PrintReport& report) {
  Json samples = Json::object();
  for (const MetricID metric : report.configuration.demand()) {
    const MetricSample& sample = report.snapshot[metric];
    samples[std::string(id(metric))] = {{"value", orNull(sample.value)},
                                        {"quality", rawText(sample.quality)},
                                        {"source", sample.source},
                                        {"sampledAt", orNull(sample.sampledAt, isoDate)}};
  }
  return samples;
}

Json codexJson(const CodexQuotaState& state) {
  Json candidates = Json::array();
  for (const CodexQuotaCandidate& candidate : state.candidates) {
    candidates.append({{"id", candidate.id}, {"name", orNull(candidate.name)}});
  }
  return {{"status", rawText(state.status)},
          {"usedPercent", orNull(state.usedPercent)},
          {"resetAt", orNull(state.resetAt, isoDate)},
          {"lastSuccess", orNull(state.lastSuccess, isoDate)},
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
          {"weeklyResetAt", orNull(state.weeklyResetAt, isoDate)},
          {"sessionUsed", orNull(state.sessionUsed)},
          {"sessionResetAt", orNull(state.sessionResetAt, isoDate)},
          {"lastSuccess", orNull(state.lastSuccess, isoDate)},
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
  return writeJsonLossy(value);
}

// A grey that is legible on dark bars and on light ones.
constexpr const char* pausedColour = "#808080";

// So that neighbours keep their places while the texts change.
std::string widestText(const StatusModule& module, const MetricSnapshot& snapshot) {
  StatusModule widest = module;
  for (StatusLine* line : {&widest.top, &widest.bottom}) {
    if (!line->text.empty()) {
      line->text = LineStyle::reserved(line->metric, snapshot);
    }
  }
  return StatusModules::joinedLines(widest);
}

}  // namespace

std::string textLine(const PrintReport& report) {
  std::string text;
  for (const StatusModule& module : report.presentation.modules) {
    if (!text.empty()) {
      text += " | ";
    }
    text += StatusModules::joinedLines(module);
  }
  return text.empty() ? StatusPresentation::emptyMark : text;
}

std::string jsonLine(const PrintReport& report) {
  Json modules = Json::array();
  for (const StatusModule& module : report.presentation.modules) {
    modules.append({{"id", module.id.text()},
                    {"top", lineJson(module.top)},
                    {"bottom", lineJson(module.bottom)}});
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
  for (const StatusModule& module : report.presentation.modules) {
    Json block{{"name", i3barBlockName},
               {"instance", module.id.text()},
               {"full_text", StatusModules::joinedLines(module)},
               {"min_width", widestText(module, report.snapshot)},
               {"markup", "none"}};
    if (report.configuration.paused) {
      block["color"] = pausedColour;
    }
    blocks.append(std::move(block));
  }
  return written(blocks);
}

std::string waybarLine(const PrintReport& report) {
  Json object{{"text", escapedForMarkup(textLine(report))},
              {"tooltip", escapedForMarkup(report.presentation.toolTip)},
              {"class", report.configuration.paused ? "paused" : "running"}};
  return written(object);
}

}  // namespace vantora::PrintFormatter
