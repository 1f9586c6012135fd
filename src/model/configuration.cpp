// SPDX-License-Identifier: MIT
#include "model/configuration.hpp"

#include <algorithm>

namespace vantora {
namespace {

bool isValid(const ModuleConfiguration& module) {
  namespace limits = ConfigurationLimits;
  return limits::width.contains(module.width) && limits::font.contains(module.fontTop) &&
         limits::font.contains(module.fontBottom) &&
         (!module.gapAfter || limits::gap.contains(*module.gapAfter));
}

bool haveDistinctIds(const std::vector<ModuleConfiguration>& modules) {
  std::vector<UUID> ids;
  ids.reserve(modules.size());
  for (const ModuleConfiguration& module : modules) {
    ids.push_back(module.id);
  }
  std::sort(ids.begin(), ids.end());
  return std::adjacent_find(ids.begin(), ids.end()) == ids.end();
}

ModuleConfiguration defaultModule(MetricID top, MetricID bottom, double width) {
  ModuleConfiguration module;
  module.top = top;
  module.bottom = bottom;
  module.width = width;
  return module;
}

}  // namespace

std::string_view rawText(Alignment alignment) {
  switch (alignment) {
    case Alignment::left:
      return "left";
    case Alignment::center:
      return "center";
    case Alignment::right:
      return "right";
  }
  return "center";
}

std::string_view rawText(WidthMode mode) {
  return mode == WidthMode::fixed ? "fixed" : "automatic";
}

std::optional<Alignment> alignmentFromRawText(std::string_view text) {
  for (const Alignment alignment : {Alignment::left, Alignment::center, Alignment::right}) {
    if (rawText(alignment) == text) {
      return alignment;
    }
  }
  return std::nullopt;
}

std::optional<WidthMode> widthModeFromRawText(std::string_view text) {
  for (const WidthMode mode : {WidthMode::fixed, WidthMode::automatic}) {
    if (rawText(mode) == text) {
      return mode;
    }
  }
  return std::nullopt;
}

bool ModuleConfiguration::isVisible(const MetricSnapshot& snapshot) const {
  if (!enabled) {
    return false;
  }
  bool isEmpty = true;
  bool hasLiveFan = false;
  bool allStandStill = true;
  const bool hidesFans = hideInactiveFans.value_or(true);
  for (const MetricID metric : {top, bottom}) {
    if (metric == MetricID::none) {
      continue;
    }
    isEmpty = false;
    if (!hidesFans || !isFan(metric)) {
      return true;
    }
    const MetricSample& sample = snapshot[metric];
    const bool isLive = sample.quality == Quality::valid && sample.value.has_value();
    hasLiveFan = hasLiveFan || isLive;
    allStandStill = allStandStill && isLive && *sample.value == 0.0;
  }
  return !isEmpty && hasLiveFan && !allStandStill;
}

std::vector<ModuleConfiguration> AppConfiguration::defaultModules() {
  return {
      defaultModule(MetricID::batteryPercent, MetricID::batteryTime, 34),
      defaultModule(MetricID::upload, MetricID::download, 39),
      defaultModule(MetricID::cpuUsage, MetricID::cpuTemperature, 34),
  };
}

std::optional<AppConfiguration> AppConfiguration::validated() const {
  namespace limits = ConfigurationLimits;
  const bool isAccepted =
      schemaVersion == limits::schemaVersion && limits::intervalSeconds.contains(intervalSeconds) &&
      modules.size() <= limits::modules && limits::gap.contains(gap) &&
      limits::horizontalPadding.contains(horizontalPadding) &&
      limits::verticalPadding.contains(verticalPadding) && limits::lineGap.contains(lineGap) &&
      (!networkInterface || networkInterface->size() <= limits::networkInterfaceBytes) &&
      (!codexSettings || codexSettings->isValid()) &&
      (!claudeSettings || claudeSettings->isValid()) && haveDistinctIds(modules) &&
      std::all_of(modules.begin(), modules.end(), isValid);
  return isAccepted ? std::optional(*this) : std::nullopt;
}

bool AppConfiguration::insertAtTop(ModuleConfiguration module) {
  if (modules.size() >= ConfigurationLimits::modules) {
    return false;
  }
  modules.insert(modules.begin(), module);
  return true;
}

MetricSet AppConfiguration::demand() const {
  MetricSet metrics;
  for (const ModuleConfiguration& module : modules) {
    if (module.enabled) {
      metrics.insert(module.top);
      metrics.insert(module.bottom);
    }
  }
  metrics.erase(MetricID::none);
  return metrics;
}

FamilySet AppConfiguration::families() const {
  FamilySet result;
  for (const MetricID metric : demand()) {
    if (const auto wanted = family(metric)) {
      result.insert(*wanted);
    }
  }
  return result;
}

}  // namespace vantora
