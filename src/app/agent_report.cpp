// SPDX-License-Identifier: MIT
#include "app/agent_report.hpp"

#include <cmath>
#include <utility>

#include "model/json_reader.hpp"

namespace vantora {
namespace {

constexpr Quality lastQuality = Quality::stale;

std::int64_t unixSeconds(WallTime time) {
  return std::chrono::floor<std::chrono::seconds>(time.time_since_epoch()).count();
}

std::optional<WallTime> asTime(const Json& value) {
  const auto count = asInteger(value);
  return count && *count >= 0 && static_cast<double>(*count) < latestBelievableUnixTime
             ? std::optional(wallTimeFromUnix(static_cast<double>(*count)))
             : std::nullopt;
}

std::optional<Seconds> asSpan(const Json& value) {
  const auto count = asDouble(value);
  return count && std::isfinite(*count) && *count >= 0 ? std::optional(Seconds{*count})
                                                       : std::nullopt;
}

std::optional<MetricID> asMetric(const Json& value) {
  const auto text = asText(value);
  return text ? metricFromId(*text) : std::nullopt;
}

std::optional<Quality> asQuality(const Json& value) {
  const auto text = asText(value);
  for (int index = 0; text && index <= static_cast<int>(lastQuality); ++index) {
    if (rawText(static_cast<Quality>(index)) == *text) {
      return static_cast<Quality>(index);
    }
  }
  return std::nullopt;
}

Json itemJson(const StatusItemReport& item) {
  return {{"panel", item.panel},     {"program", item.program}, {"form", item.form},
          {"formWhy", item.formWhy}, {"scale", item.scale},     {"ink", item.ink},
          {"inkWhy", item.inkWhy}};
}

std::optional<StatusItemReport> asItem(const Json& value) {
  StatusItemReport item;
  ObjectReader reader(value);
  reader.required("panel", item.panel, asText);
  reader.required("program", item.program, asText);
  reader.required("form", item.form, asText);
  reader.required("formWhy", item.formWhy, asText);
  reader.required("scale", item.scale, asText);
  reader.required("ink", item.ink, asText);
  reader.required("inkWhy", item.inkWhy, asText);
  return reader.isGood() ? std::optional(std::move(item)) : std::nullopt;
}

std::optional<ReadingReport> asReading(const Json& value) {
  ReadingReport reading;
  ObjectReader reader(value);
  reader.required("metric", reading.metric, asMetric);
  reader.required("quality", reading.quality, asQuality);
  reader.required("text", reading.text, asText);
  reader.required("source", reading.source, asText);
  return reader.isGood() ? std::optional(std::move(reading)) : std::nullopt;
}

Json quotaJson(const QuotaReport& quota) {
  return {{"status", quota.status},
          {"message", quota.message},
          {"lastSuccess", orNull(quota.lastSuccess, unixSeconds)},
          {"nextQuery", orNull(quota.nextQuery, unixSeconds)}};
}

std::optional<QuotaReport> asQuota(const Json& value) {
  QuotaReport quota;
  ObjectReader reader(value);
  reader.required("status", quota.status, asText);
  reader.required("message", quota.message, asText);
  reader.nullable("lastSuccess", quota.lastSuccess, asTime);
  reader.nullable("nextQuery", quota.nextQuery, asTime);
  return reader.isGood() ? std::optional(std::move(quota)) : std::nullopt;
}

}  // namespace

Json readingsJson(const std::vector<ReadingReport>& readings) {
  Json array = Json::array();
  for (const ReadingReport& reading : readings) {
    array.append({{"metric", id(reading.metric)},
                  {"quality", rawText(reading.quality)},
                  {"text", reading.text},
                  {"source", reading.source}});
  }
  return array;
}

std::string encode(const AgentReport& report) {
  return writeJsonLossy({{"version", report.version},
                         {"running", report.running.count()},
                         {"item", itemJson(report.item)},
                         {"shown", report.shown},
                         {"isPaused", report.isPaused},
                         {"notice", orNull(report.notice)},
                         {"readings", readingsJson(report.readings)},
                         {"codex", quotaJson(report.codex)},
                         {"claude", quotaJson(report.claude)}});
}

std::optional<AgentReport> parseAgentReport(std::string_view text) {
  const auto document = text.size() <= maxAgentReport ? parseJson(text) : std::nullopt;
  if (!document) {
    return std::nullopt;
  }
  AgentReport report;
  ObjectReader reader(*document);
  reader.required("version", report.version, asText);
  reader.required("running", report.running, asSpan);
  reader.required("item", report.item, asItem);
  reader.required("shown", report.shown, asText);
  reader.required("isPaused", report.isPaused, asBool);
  reader.nullable("notice", report.notice, asText);
  reader.required("readings", report.readings,
                  [](const Json& list) { return asList(list, asReading); });
  reader.required("codex", report.codex, asQuota);
  reader.required("claude", report.claude, asQuota);
  return reader.isGood() ? std::optional(std::move(report)) : std::nullopt;
}

}  // namespace vantora
