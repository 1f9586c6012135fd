// SPDX-License-Identifier: MIT
#include "platform/macos/readings/io_power_sources.hpp"

#include <IOKit/ps/IOPowerSources.h>

#include "platform/macos/base/core_foundation.hpp"

namespace vantora {
namespace {

PowerSourceDescription describe(CFDictionaryRef dictionary) {
  PowerSourceDescription description;
  const auto count = static_cast<std::size_t>(CFDictionaryGetCount(dictionary));
  std::vector<const void*> keys(count);
  std::vector<const void*> values(count);
  CFDictionaryGetKeysAndValues(dictionary, keys.data(), values.data());
  for (std::size_t i = 0; i < count; ++i) {
    auto key = asText(keys[i]);
    if (!key) {
      continue;
    }
    if (const auto number = asNumber(values[i])) {
      description.set(std::move(*key), *number);
    } else if (const auto flag = asFlag(values[i])) {
      description.set(std::move(*key), *flag);
    } else if (auto text = asText(values[i])) {
      description.set(std::move(*key), std::move(*text));
    }
  }
  return description;
}

}  // namespace

std::optional<PowerSourceDescription> IOPowerSources::adapterDetails() {
  const CFOwned<CFDictionaryRef> details(IOPSCopyExternalPowerAdapterDetails());
  const CFDictionaryRef dictionary = asDictionary(details.get());
  if (dictionary == nullptr) {
    return std::nullopt;
  }
  return describe(dictionary);
}

std::vector<PowerSourceDescription> IOPowerSources::powerSources() {
  std::vector<PowerSourceDescription> descriptions;
  const CFOwned<CFTypeRef> information(IOPSCopyPowerSourcesInfo());
  if (!information) {
    return descriptions;
  }
  const CFOwned<CFArrayRef> list(IOPSCopyPowerSourcesList(information.get()));
  const CFArrayRef sources = asArray(list.get());
  if (sources == nullptr) {
    return descriptions;
  }
  for (CFIndex i = 0; i < CFArrayGetCount(sources); ++i) {
    // Belongs to `information`.
    const CFDictionaryRef dictionary = asDictionary(
        IOPSGetPowerSourceDescription(information.get(), CFArrayGetValueAtIndex(sources, i)));
    descriptions.push_back(dictionary != nullptr ? describe(dictionary) : PowerSourceDescription{});
  }
  return descriptions;
}

}  // namespace vantora
