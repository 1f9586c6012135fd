// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis_json.hpp"

#include "app/iso_date.hpp"
#include "model/json.hpp"

namespace vantora {
namespace {

Json orNull(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}
Json orNull(const std::optional<std::string>& text) {
  return text ? Json(*text) : Json(nullptr);
}
Json dateOrNull(const std::optional<WallTime>& date) {
  return date ? Json(isoDate(*date)) : Json(nullptr);
}

Json itemJson(const StatusItemReport& item) {
  return {{"panel", orNull(item.panel)},  {"program", orNull(item.program)},
          {"form", orNull(item.form)},    {"formWhy", orNull(item.formWhy)},
          {"scale", orNull(item.scale)},  {"ink", orNull(item.ink)},
          {"inkWhy", orNull(item.inkWhy)}};
}

Json agentJson(const Diagnosis& diagnosis) {
  Json agent{{"presence", rawText(diagnosis.agent)},
             {"version", nullptr},
             {"runningSeconds", nullptr},
             {"shown", nullptr},
             {"isPaused", nullptr},
             {"notice", nullptr}};
  if (diagnosis.report) {
    const AgentReport& report = *diagnosis.report;
    agent["version"] = report.version;
    agent["runningSeconds"] = report.running.count();
    agent["shown"] = report.shown;
    agent["isPaused"] = report.isPaused;
    agent["notice"] = orNull(report.notice);
  }
  return agent;
}

Json metricsJson(MetricSet metrics) {
  Json array = Json::array();
  for (const MetricID metric : metrics) {
    array.append(id(metric));
  }
  return array;
}

Json devicesJson(const DeviceList& list) {
  Json array = Json::array();
  for (const DeviceReport& device : list.devices) {
    array.append({{"name", device.name},
                  {"driver", orNull(device.driver)},
                  {"channel", orNull(device.channel)},
                  {"label", orNull(device.label)},
                  {"state", orNull(device.state)},
                  {"feeds", metricsJson(device.feeds)},
                  {"why", orNull(device.why)}});
  }
  return {{"devices", std::move(array)}, {"why", orNull(list.why)}};
}

Json assistantJson(const AssistantReport& assistant) {
  Json quota = nullptr;
  if (assistant.quota) {
    quota = {{"status", assistant.quota->status},
             {"message", orNull(assistant.quota->message)},
             {"lastSuccess", dateOrNull(assistant.quota->lastSuccess)},
             {"nextQuery", dateOrNull(assistant.quota->nextQuery)}};
  }
  return {{"name", assistant.name},
          {"isWanted", assistant.isWanted},
          {"isShown", assistant.isShown},
          {"chosen", orNull(assistant.chosen)},
          {"path", orNull(assistant.path)},
          {"foundPath", orNull(assistant.foundPath)},
          {"version", orNull(assistant.version)},
          {"quota", std::move(quota)}};
}

Json fileJson(const FileReport& file) {
  return {
      {"path", file.path}, {"state", rawText(file.state)}, {"changed", dateOrNull(file.changed)}};
}

}  // namespace

std::string diagnosisJson(const Diagnosis& diagnosis, const Concealer& conceal) {
  Json assistants = Json::array();
  for (const AssistantReport& assistant : diagnosis.assistants) {
    assistants.append(assistantJson(assistant));
  }
  Json libraries = Json::object();
  for (const auto& [name, version] : diagnosis.libraries) {
    libraries[name] = version;
  }
  const Json document{{"program", diagnosis.program},
                      {"version", diagnosis.version},
                      {"at", isoDate(diagnosis.at)},
                      {"session",
                       {{"system", diagnosis.system},
                        {"kind", diagnosis.session},
                        {"desktop", orNull(diagnosis.desktop)},
                        {"bus", diagnosis.bus}}},
                      {"agent", agentJson(diagnosis)},
                      {"item", itemJson(diagnosis.item)},
                      {"typefaces",
                       {{"text", orNull(diagnosis.typeface)},
                        {"monospaced", orNull(diagnosis.monospaced)},
                        {"why", orNull(diagnosis.typefaceWhy)}}},
                      {"sensors", devicesJson(diagnosis.sensors)},
                      {"supplies", devicesJson(diagnosis.supplies)},
                      {"links", devicesJson(diagnosis.links)},
                      {"readings", readingsJson(diagnosis.readings)},
                      {"assistants", std::move(assistants)},
                      {"configuration", fileJson(diagnosis.configuration)},
                      {"backup", fileJson(diagnosis.backup)},
                      {"loginItem", diagnosis.loginItem},
                      {"libraries", std::move(libraries)}};
  return writeJsonLossy(conceal.document(document));
}

}  // namespace vantora
