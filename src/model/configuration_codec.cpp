// SPDX-License-Identifier: MIT
#include "model/configuration_codec.hpp"

#include <cmath>
#include <limits>
#include <utility>

#include "model/json.hpp"

namespace vantora::ConfigurationCodec {
namespace {

// Reads the members of one object; the first thing that does not fit makes the whole
// document fail, which `failed` remembers.
class ObjectReader {
 public:
  ObjectReader(const Json& object, bool& failed) : object_(object), failed_(failed) {
    if (!object.is_object()) {
      failed_ = true;
    }
  }

  template <typename T, typename Convert>
  void required(std::string_view key, T& target, Convert convert) {
    const Json* value = member(object_, key);
    if (value == nullptr) {
      failed_ = true;
      return;
    }
    store(*value, target, convert);
  }

  template <typename T, typename Convert>
  void optional(std::string_view key, std::optional<T>& target, Convert convert) {
    target.reset();
    if (const Json* value = presentMember(object_, key)) {
      store(*value, target, convert);
    }
  }

 private:
  template <typename T, typename Convert>
  void store(const Json& value, T& target, Convert convert) {
    if (auto converted = convert(value)) {
      target = *std::move(converted);
    } else {
      failed_ = true;
    }
  }

  const Json& object_;
  bool& failed_;
};

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
  if (!value.is_string()) {
    return std::nullopt;
  }
  return fromText(value.get_ref<const std::string&>());
}

std::optional<ModuleConfiguration> toModule(const Json& value) {
  bool failed = false;
  ObjectReader reader(value, failed);
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
  return failed ? std::nullopt : std::optional(module);
}

std::optional<std::vector<ModuleConfiguration>> toModules(const Json& value) {
  if (!value.is_array()) {
    return std::nullopt;
  }
  std::vector<ModuleConfiguration> modules;
  modules.reserve(value.size());
  for (const Json& element : value) {
    auto module = toModule(element);
    if (!module) {
      return std::nullopt;
    }
    modules.push_back(*module);
  }
  return modules;
}

std::optional<CodexQuotaSettings> toCodexSettings(const Json& value) {
  bool failed = false;
  ObjectReader reader(value, failed);
  CodexQuotaSettings settings;
  reader.required("enabled", settings.enabled, asBool);
  reader.required("intervalMinutes", settings.intervalMinutes, toInt);
  reader.optional("selectedLimitID", settings.selectedLimitID, asText);
  reader.required("showUsed", settings.showUsed, asBool);
  reader.required("oneDecimal", settings.oneDecimal, asBool);
  reader.required("showResetDate", settings.showResetDate, asBool);
  return failed ? std::nullopt : std::optional(std::move(settings));
}

std::optional<ClaudeQuotaSettings> toClaudeSettings(const Json& value) {
  bool failed = false;
  ObjectReader reader(value, failed);
  ClaudeQuotaSettings settings;
  reader.required("enabled", settings.enabled, asBool);
  reader.required("intervalMinutes", settings.intervalMinutes, toInt);
  reader.required("showUsed", settings.showUsed, asBool);
  reader.required("oneDecimal", settings.oneDecimal, asBool);
  return failed ? std::nullopt : std::optional(settings);
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
    modules.push_back(toJson(module));
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
  bool failed = false;
  ObjectReader reader(*json, failed);
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
  return failed ? std::nullopt : std::optional(std::move(configuration));
}

}  // namespace vantora::ConfigurationCodec
