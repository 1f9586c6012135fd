// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/dbus_menu.hpp"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vantora {
namespace {

constexpr const char* menuInterface = "com.canonical.dbusmenu";
constexpr std::int32_t rootId = 0;

int appendTextProperty(sd_bus_message* message, const char* name, const char* value) {
  return sd_bus_message_append(message, "{sv}", name, "s", value);
}

std::vector<std::int32_t> readIds(sd_bus_message* call) {
  std::vector<std::int32_t> ids;
  if (sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "i") > 0) {
    std::int32_t id = 0;
    while (sd_bus_message_read_basic(call, SD_BUS_TYPE_INT32, &id) > 0) {
      ids.push_back(id);
    }
    sd_bus_message_exit_container(call);
  }
  return ids;
}

int appendIds(sd_bus_message* message, const std::vector<std::int32_t>& ids) {
  return sd_bus_message_append_array(message, SD_BUS_TYPE_INT32, ids.data(),
                                     ids.size() * sizeof(std::int32_t));
}

int refuse(sd_bus_error* error) {
  return sd_bus_error_set_const(error, SD_BUS_ERROR_INVALID_ARGS, "No such menu item");
}

// Sends what `fill` has written, or an error.
template <typename Fill>
int answer(sd_bus_message* call, const Fill& fill) {
  sd_bus_message* reply = nullptr;
  int result = sd_bus_message_new_method_return(call, &reply);
  if (result >= 0) {
    result = fill(reply);
  }
  if (result >= 0) {
    result = sd_bus_send(nullptr, reply, nullptr);
  }
  sd_bus_message_unref(reply);
  return result;
}

int getVersion(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
               sd_bus_error*) {
  return sd_bus_message_append(reply, "u", 3U);
}

int getTextDirection(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                     sd_bus_error*) {
  return sd_bus_message_append(reply, "s", "ltr");
}

int getStatus(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
              sd_bus_error*) {
  return sd_bus_message_append(reply, "s", "normal");
}

int getIconThemePath(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                     sd_bus_error*) {
  return sd_bus_message_append(reply, "as", 0);
}

}  // namespace

const sd_bus_vtable DBusMenu::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Version", "u", getVersion, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("TextDirection", "s", getTextDirection, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", getStatus, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconThemePath", "as", getIconThemePath, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_METHOD("GetLayout", "iias", "u(ia{sv}av)", getLayout, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetGroupProperties", "aias", "a(ia{sv})", getGroupProperties,
                  SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("GetProperty", "is", "v", getProperty, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Event", "isvu", "", event, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("EventGroup", "a(isvu)", "ai", eventGroup, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShow", "i", "b", aboutToShow, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("AboutToShowGroup", "ai", "aiai", aboutToShowGroup, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("ItemsPropertiesUpdated", "a(ia{sv})a(ias)", 0),
    SD_BUS_SIGNAL("LayoutUpdated", "ui", 0),
    SD_BUS_SIGNAL("ItemActivationRequested", "iu", 0),
    SD_BUS_VTABLE_END,
};

DBusMenu::DBusMenu(BusConnection& connection, std::function<bool()> isPaused,
                   std::function<void(StatusMenuCommand)> onCommand)
    : connection_(connection),
      isPaused_(std::move(isPaused)),
      onCommand_(std::move(onCommand)),
      wasPaused_(isPaused_()) {
  connection_.add(*this);
}

DBusMenu::~DBusMenu() {
  connection_.remove(*this);
}

void DBusMenu::busConnected(sd_bus& bus) {
  bus_ = &bus;
  sd_bus_add_object_vtable(bus_, out(object_), path, menuInterface, table, this);
}

void DBusMenu::busLost() {
  bus_ = nullptr;
  object_.reset();
}

bool DBusMenu::refresh() {
  const bool isPaused = isPaused_();
  if (isPaused == wasPaused_) {
    return false;
  }
  wasPaused_ = isPaused;
  ++revision_;
  if (bus_ != nullptr) {
    sd_bus_emit_signal(bus_, path, menuInterface, "LayoutUpdated", "ui", revision_, rootId);
  }
  return true;
}

bool DBusMenu::isItem(std::int32_t id) {
  return id == rootId || statusMenuCommand(id).has_value();
}

// One a{sv}: all properties, whichever were asked for; a panel takes what it needs.
int DBusMenu::appendProperties(sd_bus_message* message, std::int32_t id) const {
  int result = sd_bus_message_open_container(message, SD_BUS_TYPE_ARRAY, "{sv}");
  if (result >= 0 && id == rootId) {
    result = appendTextProperty(message, "children-display", "submenu");
  }
  for (const StatusMenuEntry& entry : statusMenu(wasPaused_)) {
    if (result >= 0 && static_cast<std::int32_t>(entry.command) == id) {
      result = appendTextProperty(message, "label", std::string(entry.label).c_str());
    }
  }
  return result < 0 ? result : sd_bus_message_close_container(message);
}

// One (ia{sv}av), with children down to `depth` levels, all of them where it is negative.
int DBusMenu::appendItem(sd_bus_message* reply, std::int32_t id, int depth) const {
  int result = sd_bus_message_open_container(reply, SD_BUS_TYPE_STRUCT, "ia{sv}av");
  if (result >= 0) {
    result = sd_bus_message_append(reply, "i", id);
  }
  if (result >= 0) {
    result = appendProperties(reply, id);
  }
  if (result >= 0) {
    result = sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "v");
  }
  if (result >= 0 && id == rootId && depth != 0) {
    result = appendChildren(reply, depth - 1);
  }
  if (result >= 0) {
    result = sd_bus_message_close_container(reply);
  }
  return result < 0 ? result : sd_bus_message_close_container(reply);
}

int DBusMenu::appendChildren(sd_bus_message* reply, int depth) const {
  int result = 0;
  for (const StatusMenuEntry& entry : statusMenu(wasPaused_)) {
    if (result >= 0) {
      result = sd_bus_message_open_container(reply, SD_BUS_TYPE_VARIANT, "(ia{sv}av)");
    }
    if (result >= 0) {
      result = appendItem(reply, static_cast<std::int32_t>(entry.command), depth);
    }
    if (result >= 0) {
      result = sd_bus_message_close_container(reply);
    }
  }
  return result;
}

int DBusMenu::getLayout(sd_bus_message* call, void* self, sd_bus_error* error) {
  const auto* menu = static_cast<DBusMenu*>(self);
  std::int32_t id = 0;
  std::int32_t depth = 0;
  const int result = sd_bus_message_read(call, "ii", &id, &depth);
  if (result < 0) {
    return result;
  }
  if (!isItem(id)) {
    return refuse(error);
  }
  return answer(call, [&](sd_bus_message* reply) {
    const int appended = sd_bus_message_append(reply, "u", menu->revision_);
    return appended < 0 ? appended : menu->appendItem(reply, id, depth);
  });
}

int DBusMenu::getGroupProperties(sd_bus_message* call, void* self, sd_bus_error*) {
  const auto* menu = static_cast<DBusMenu*>(self);
  std::vector<std::int32_t> ids = readIds(call);
  if (ids.empty()) {  // all of them
    ids.push_back(rootId);
    for (const StatusMenuEntry& entry : statusMenu(menu->wasPaused_)) {
      ids.push_back(static_cast<std::int32_t>(entry.command));
    }
  }
  return answer(call, [&](sd_bus_message* reply) {
    int result = sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "(ia{sv})");
    for (const std::int32_t id : ids) {
      if (result < 0 || !isItem(id)) {
        continue;
      }
      result = sd_bus_message_open_container(reply, SD_BUS_TYPE_STRUCT, "ia{sv}");
      if (result >= 0) {
        result = sd_bus_message_append(reply, "i", id);
      }
      if (result >= 0) {
        result = menu->appendProperties(reply, id);
      }
      if (result >= 0) {
        result = sd_bus_message_close_container(reply);
      }
    }
    return result < 0 ? result : sd_bus_message_close_container(reply);
  });
}

int DBusMenu::getProperty(sd_bus_message* call, void* self, sd_bus_error* error) {
  const auto* menu = static_cast<DBusMenu*>(self);
  std::int32_t id = 0;
  const char* name = "";
  const int result = sd_bus_message_read(call, "is", &id, &name);
  if (result < 0) {
    return result;
  }
  const std::string_view property = name;
  if (id == rootId && property == "children-display") {
    return sd_bus_reply_method_return(call, "v", "s", "submenu");
  }
  for (const StatusMenuEntry& entry : statusMenu(menu->wasPaused_)) {
    if (static_cast<std::int32_t>(entry.command) == id && property == "label") {
      return sd_bus_reply_method_return(call, "v", "s", std::string(entry.label).c_str());
    }
  }
  return refuse(error);
}

// False for an item that the menu does not have.
bool DBusMenu::take(std::int32_t id, const char* eventName) {
  const auto command = statusMenuCommand(id);
  if (command.has_value() && std::string_view(eventName) == "clicked") {
    onCommand_(*command);
  }
  return isItem(id);
}

int DBusMenu::event(sd_bus_message* call, void* self, sd_bus_error* error) {
  std::int32_t id = 0;
  const char* name = "";
  const int result = sd_bus_message_read(call, "is", &id, &name);
  if (result < 0) {
    return result;
  }
  if (!static_cast<DBusMenu*>(self)->take(id, name)) {
    return refuse(error);
  }
  return sd_bus_reply_method_return(call, "");
}

int DBusMenu::eventGroup(sd_bus_message* call, void* self, sd_bus_error*) {
  std::vector<std::int32_t> unknown;
  int result = sd_bus_message_enter_container(call, SD_BUS_TYPE_ARRAY, "(isvu)");
  if (result < 0) {
    return result;
  }
  while (sd_bus_message_enter_container(call, SD_BUS_TYPE_STRUCT, "isvu") > 0) {
    std::int32_t id = 0;
    const char* name = "";
    result = sd_bus_message_read(call, "is", &id, &name);
    if (result < 0) {
      return result;
    }
    if (!static_cast<DBusMenu*>(self)->take(id, name)) {
      unknown.push_back(id);
    }
    sd_bus_message_skip(call, "vu");
    sd_bus_message_exit_container(call);
  }
  return answer(call, [&](sd_bus_message* reply) { return appendIds(reply, unknown); });
}

int DBusMenu::aboutToShow(sd_bus_message* call, void* self, sd_bus_error* error) {
  std::int32_t id = 0;
  const int result = sd_bus_message_read(call, "i", &id);
  if (result < 0) {
    return result;
  }
  if (!isItem(id)) {
    return refuse(error);
  }
  return sd_bus_reply_method_return(call, "b", static_cast<DBusMenu*>(self)->refresh() ? 1 : 0);
}

int DBusMenu::aboutToShowGroup(sd_bus_message* call, void* self, sd_bus_error*) {
  std::vector<std::int32_t> changed;
  std::vector<std::int32_t> unknown;
  const bool isChanged = static_cast<DBusMenu*>(self)->refresh();
  for (const std::int32_t id : readIds(call)) {
    if (!isItem(id)) {
      unknown.push_back(id);
    } else if (isChanged && id == rootId) {
      changed.push_back(id);
    }
  }
  return answer(call, [&](sd_bus_message* reply) {
    const int result = appendIds(reply, changed);
    return result < 0 ? result : appendIds(reply, unknown);
  });
}

}  // namespace vantora
