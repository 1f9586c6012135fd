// SPDX-License-Identifier: MIT
#include "app/diagnosis/diagnosis_json.hpp"

#include "app/iso_date.hpp"
#include "model/json.hpp"

namespace vantora {
namespace {

Json nullIfEmpty(const std::string& text) {
  return text.empty() ? Json(nullptr) : Json(text);
}

Json itemJson(const StatusItemReport& item) {
  return {{"panel", nullIfEmpty(item.panel)},  {"program", nullIfEmpty(item.program)},
          {"form", nullIfEmpty(item.form)},    {"formWhy", nullIfEmpty(item.formWhy)},
          {"scale", nullIfEmpty(item.scale)},  {"ink", nullIfEmpty(item.ink)},
          {"inkWhy", nullIfEmpty(item.inkWhy)}};
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
                  {"driver", nullIfEmpty(device.driver)},
                  {"channel", nullIfEmpty(device.channel)},
                  {"label", nullIfEmpty(device.label)},
                  {"state", nullIfEmpty(device.state)},
                  {"feeds", metricsJson(device.feeds)},
                  {"why", nullIfEmpty(device.why)}});
  }
  return {{"devices", std::move(array)}, {"why", nullIfEmpty(list.why)}};
}

Json assistantJson(const AssistantReport& assistant) {
  Json quota = nullptr;
  if (assistant.quota) {
    quota = {{"status", assistant.quota->status},
             {"message", nullIfEmpty(assistant.quota->message)},
             {"lastSuccess", orNull(assistant.quota->lastSuccess, isoDate)},
             {"nextQuery", orNull(assistant.quota->nextQuery, isoDate)}};
  }
  return {{"name", assistant.name},
          {"isWanted", assistant.isWanted},
          {"isShown", assistant.isShown},
          {"chosen", orNull(assistant.chosen)},
          {"path", orNull(assistant.path)},
          {"foundPath", nullIfEmpty(assistant.foundPath)},
          {"version", orNull(assistant.version)},
          {"quota", std::move(quota)}};
}

Json fileJson(const FileReport& file) {
  return {{"path", file.path},
          {"state", rawText(file.state)},
          {"changed", orNull(file.changed, isoDate)}};
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
                        {"desktop", nullIfEmpty(diagnosis.desktop)},
                        {"bus", diagnosis.bus}}},
                      {"agent", agentJson(diagnosis)},
                      {"item", itemJson(diagnosis.item)},
                      {"typefaces",
                       {{"text", nullIfEmpty(diagnosis.typeface)},
                        {"monospaced", nullIfEmpty(diagnosis.monospaced)},
                        {"why", nullIfEmpty(diagnosis.typefaceWhy)}}},
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
