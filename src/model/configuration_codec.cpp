// SPDX-License-Identifier: MIT
#include "model/configuration_codec.hpp"

#include <cmath>
#include <limits>
#include <utility>

#include "model/json.hpp"
#include "model/json_reader.hpp"

namespace vantora::ConfigurationCodec {
namespace {

std::optional<int> toInt(const Json& value) {
  const auto number = asInteger(value);
  if (!number || *number < std::numeric_limits<int>::min() ||
      *number > std::numeric_limits<int>::max()) {
    return std::nullopt;
  }
  return static_cast<int>(*number);
}

// Turns a conversion from text into one from JSON.
template <auto fromText>
auto enumeration(const Json& value) -> decltype(fromText(std::string_view())) {
  const std::optional<std::string> text = asText(value);
  return text ? fromText(*text) : std::nullopt;
}

std::optional<ModuleConfiguration> toModule(const Json& value) {
  ObjectReader reader(value);
  ModuleConfiguration module;
  reader.required("id", module.id, enumeration<&UUID::parse>);
  reader.required("enabled", module.enabled, asBool);
  reader.required("top", module.top, enumeration<&metricFromId>);
  reader.required("bottom", module.bottom, enumeration<&metricFromId>);
  reader.required("widthMode", module.widthMode, enumeration<&widthModeFromRawText>);
  reader.required("width", module.width, asDouble);
  reader.required("fontTop", module.fontTop, asDouble);
  reader.required("fontBottom", module.fontBottom, asDouble);
  reader.required("alignment", module.alignment, enumeration<&alignmentFromRawText>);
  reader.optional("gapAfter", module.gapAfter, asDouble);
  reader.optional("hideInactiveFans", module.hideInactiveFans, asBool);
  return reader.isGood() ? std::optional(module) : std::nullopt;
}

std::optional<std::vector<ModuleConfiguration>> toModules(const Json& value) {
  return asList(value, toModule);
}

std::optional<CodexQuotaSettings> toCodexSettings(const Json& value) {
  ObjectReader reader(value);
  CodexQuotaSettings settings;
  reader.required("enabled", settings.enabled, asBool);
  reader.required("intervalMinutes", settings.intervalMinutes, toInt);
  reader.optional("selectedLimitID", settings.selectedLimitID, asText);
  reader.required("showUsed", settings.showUsed, asBool);
  reader.required("oneDecimal", settings.oneDecimal, asBool);
  reader.required("showResetDate", settings.showResetDate, asBool);
  return reader.isGood() ? std::optional(std::move(settings)) : std::nullopt;
}

std::optional<ClaudeQuotaSettings> toClaudeSettings(const Json& value) {
  ObjectReader reader(value);
  ClaudeQuotaSettings settings;
  reader.required("enabled", settings.enabled, asBool);
  reader.required("intervalMinutes", settings.intervalMinutes, toInt);
  reader.required("showUsed", settings.showUsed, asBool);
  reader.required("oneDecimal", settings.oneDecimal, asBool);
  return reader.isGood() ? std::optional(settings) : std::nullopt;
}

template <typename T>
void putOptional(Json& object, const char* key, const std::optional<T>& value) {
  if (value) {
    object[key] = *value;
  }
}

Json toJson(const ModuleConfiguration& module) {
  Json object{{"id", module.id.text()},
              {"enabled", module.enabled},
              {"top", id(module.top)},
              {"bottom", id(module.bottom)},
              {"widthMode", rawText(module.widthMode)},
              {"width", module.width},
              {"fontTop", module.fontTop},
              {"fontBottom", module.fontBottom},
              {"alignment", rawText(module.alignment)}};
  putOptional(object, "gapAfter", module.gapAfter);
  putOptional(object, "hideInactiveFans", module.hideInactiveFans);
  return object;
}

Json toJson(const CodexQuotaSettings& settings) {
  Json object{{"enabled", settings.enabled},
              {"intervalMinutes", settings.intervalMinutes},
              {"showUsed", settings.showUsed},
              {"oneDecimal", settings.oneDecimal},
              {"showResetDate", settings.showResetDate}};
  putOptional(object, "selectedLimitID", settings.selectedLimitID);
  return object;
}

Json toJson(const ClaudeQuotaSettings& settings) {
  return Json{{"enabled", settings.enabled},
              {"intervalMinutes", settings.intervalMinutes},
              {"showUsed", settings.showUsed},
              {"oneDecimal", settings.oneDecimal}};
}

// The JSON library would write null for a number that is not finite.
bool hasOnlyFiniteNumbers(const AppConfiguration& configuration) {
  for (const ModuleConfiguration& module : configuration.modules) {
    if (!std::isfinite(module.width) || !std::isfinite(module.fontTop) ||
        !std::isfinite(module.fontBottom) || !std::isfinite(module.gapAfter.value_or(0))) {
      return false;
    }
  }
  return std::isfinite(configuration.gap) && std::isfinite(configuration.horizontalPadding) &&
         std::isfinite(configuration.verticalPadding) && std::isfinite(configuration.lineGap);
}

}  // namespace

std::optional<std::string> encode(const AppConfiguration& configuration) {
  if (!hasOnlyFiniteNumbers(configuration)) {
    return std::nullopt;
  }
  Json modules = Json::array();
  for (const ModuleConfiguration& module : configuration.modules) {
    modules.append(toJson(module));
  }
  Json document{{"schemaVersion", configuration.schemaVersion},
                {"intervalSeconds", configuration.intervalSeconds},
                {"modules", std::move(modules)},
                {"gap", configuration.gap},
                {"horizontalPadding", configuration.horizontalPadding},
                {"verticalPadding", configuration.verticalPadding},
                {"lineGap", configuration.lineGap},
                {"paused", configuration.paused}};
  putOptional(document, "networkInterface", configuration.networkInterface);
  if (configuration.codexSettings) {
    document["codexSettings"] = toJson(*configuration.codexSettings);
  }
  if (configuration.claudeSettings) {
    document["claudeSettings"] = toJson(*configuration.claudeSettings);
  }
  return writeJson(document);
}

std::optional<AppConfiguration> decode(std::string_view document) {
  const auto json = parseJson(document);
  if (!json) {
    return std::nullopt;
  }
  ObjectReader reader(*json);
  AppConfiguration configuration;
  reader.required("schemaVersion", configuration.schemaVersion, toInt);
  reader.required("intervalSeconds", configuration.intervalSeconds, toInt);
  reader.required("modules", configuration.modules, toModules);
  reader.required("gap", configuration.gap, asDouble);
  reader.required("horizontalPadding", configuration.horizontalPadding, asDouble);
  reader.required("verticalPadding", configuration.verticalPadding, asDouble);
  reader.required("lineGap", configuration.lineGap, asDouble);
  reader.optional("networkInterface", configuration.networkInterface, asText);
  reader.required("paused", configuration.paused, asBool);
  reader.optional("codexSettings", configuration.codexSettings, toCodexSettings);
  reader.optional("claudeSettings", configuration.claudeSettings, toClaudeSettings);
  return reader.isGood() ? std::optional(std::move(configuration)) : std::nullopt;
}

}  // namespace vantora::ConfigurationCodec
