// SPDX-License-Identifier: MIT
#include "platform/macos/settings/cf_user_defaults.hpp"

#include "platform/macos/base/core_foundation.hpp"

namespace vantora {
namespace {

// Named rather than kCFPreferencesCurrentApplication: a helper started from the bundle
// would otherwise have a domain of its own.
const CFStringRef application = CFSTR("local.vantora.Vantora");

Fault notStored() {
  return Fault::failed("o macOS não gravou as preferências");
}

}  // namespace

std::optional<std::string> CFUserDefaults::text(std::string_view key) {
  const auto name = makeString(key);
  if (!name) {
    return std::nullopt;
  }
  const CFOwned<CFPropertyListRef> value(CFPreferencesCopyAppValue(name.get(), application));
  return asText(value.get());
}

std::optional<Fault> CFUserDefaults::setText(std::string_view key, std::string_view value) {
  const auto name = makeString(key);
  const auto text = makeString(value);
  if (!name || !text) {
    return notStored();
  }
  const CFOwned<CFPropertyListRef> previous(CFPreferencesCopyAppValue(name.get(), application));
  CFPreferencesSetAppValue(name.get(), text.get(), application);
  if (CFPreferencesAppSynchronize(application) == 0) {
    // Only the process's own copy has changed; a null value removes the key.
    CFPreferencesSetAppValue(name.get(), previous.get(), application);
    return notStored();
  }
  return std::nullopt;
}

}  // namespace vantora
