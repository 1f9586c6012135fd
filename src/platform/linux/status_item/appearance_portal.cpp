// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/appearance_portal.hpp"

#include <cstdint>
#include <utility>

namespace vantora {
namespace {

constexpr const char* portalName = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* settingsInterface = "org.freedesktop.portal.Settings";
constexpr const char* appearance = "org.freedesktop.appearance";
constexpr const char* colorSchemeKey = "color-scheme";

// 0 no preference, 1 prefers dark, 2 prefers light; other values mean no preference.
ColorScheme toColorScheme(std::uint32_t value) {
  switch (value) {
    case 1:
      return ColorScheme::dark;
    case 2:
      return ColorScheme::light;
    default:
      return ColorScheme::noPreference;
  }
}

// The value is in one variant (SettingChanged, ReadOne) or in two (Read).
ColorScheme readScheme(sd_bus_message* message) {
  const char* contents = nullptr;
  char type = 0;
  while (sd_bus_message_peek_type(message, &type, &contents) > 0 && type == SD_BUS_TYPE_VARIANT) {
    if (sd_bus_message_enter_container(message, SD_BUS_TYPE_VARIANT, contents) <= 0) {
      return ColorScheme::noPreference;
    }
  }
  std::uint32_t value = 0;
  if (type != SD_BUS_TYPE_UINT32 ||
      sd_bus_message_read_basic(message, SD_BUS_TYPE_UINT32, &value) <= 0) {
    return ColorScheme::noPreference;
  }
  return toColorScheme(value);
}

}  // namespace

AppearancePortal::AppearancePortal(BusConnection& connection,
                                   std::function<void(ColorScheme)> onChange)
    : connection_(connection), onChange_(std::move(onChange)) {
  connection_.add(*this);
}

AppearancePortal::~AppearancePortal() {
  connection_.remove(*this);
}

void AppearancePortal::busConnected(sd_bus& bus) {
  bus_ = &bus;
  sd_bus_add_match_async(bus_, out(ownerMatch_),
                         "type='signal',sender='org.freedesktop.DBus',path='/org/freedesktop/DBus',"
                         "interface='org.freedesktop.DBus',member='NameOwnerChanged',"
                         "arg0='org.freedesktop.portal.Desktop'",
                         onOwnerChanged, nullptr, this);
  sd_bus_add_match_async(
      bus_, out(settingMatch_),
      "type='signal',sender='org.freedesktop.portal.Desktop',"
      "path='/org/freedesktop/portal/desktop',interface='org.freedesktop.portal.Settings',"
      "member='SettingChanged',arg0='org.freedesktop.appearance',arg1='color-scheme'",
      onSettingChanged, nullptr, this);
  read();
}

void AppearancePortal::busLost() {
  // The last answer stays: a bus that comes back belongs to the same desktop.
  bus_ = nullptr;
  ownerMatch_.reset();
  settingMatch_.reset();
  readCall_.reset();
}

void AppearancePortal::read() {
  // Read is in every version of the portal; ReadOne came with the second.
  sd_bus_message* message = nullptr;
  if (sd_bus_message_new_method_call(bus_, &message, portalName, portalPath, settingsInterface,
                                     "Read") >= 0 &&
      sd_bus_message_set_auto_start(message, 0) >= 0 &&
      sd_bus_message_append(message, "ss", appearance, colorSchemeKey) >= 0) {
    sd_bus_call_async(bus_, out(readCall_), message, onRead, this, 0);
  }
  sd_bus_message_unref(message);
}

int AppearancePortal::onRead(sd_bus_message* reply, void* self, sd_bus_error*) {
  if (sd_bus_message_is_method_error(reply, nullptr) <= 0) {
    static_cast<AppearancePortal*>(self)->setScheme(readScheme(reply));
  }
  return 0;
}

int AppearancePortal::onOwnerChanged(sd_bus_message* signal, void* self, sd_bus_error*) {
  const char* name = "";
  const char* before = "";
  const char* now = "";
  if (sd_bus_message_read(signal, "sss", &name, &before, &now) >= 0 && *now != '\0') {
    static_cast<AppearancePortal*>(self)->read();
  }
  return 0;
}

int AppearancePortal::onSettingChanged(sd_bus_message* signal, void* self, sd_bus_error*) {
  const char* space = "";
  const char* key = "";
  if (sd_bus_message_read(signal, "ss", &space, &key) >= 0) {
    static_cast<AppearancePortal*>(self)->setScheme(readScheme(signal));
  }
  return 0;
}

void AppearancePortal::setScheme(ColorScheme scheme) {
  if (scheme != scheme_) {
    scheme_ = scheme;
    onChange_(scheme);
  }
}

}  // namespace vantora
