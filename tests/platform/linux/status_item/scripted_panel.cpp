// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/scripted_panel.hpp"

#include <cstring>

namespace vantora::test {
namespace {

constexpr const char* watcherName = "org.kde.StatusNotifierWatcher";
constexpr const char* itemPath = "/StatusNotifierItem";
constexpr const char* watcherPath = "/StatusNotifierWatcher";

void readPixmaps(sd_bus_message* message, std::vector<Pixmap>& pixmaps) {
  sd_bus_message_enter_container(message, SD_BUS_TYPE_ARRAY, "(iiay)");
  while (sd_bus_message_enter_container(message, SD_BUS_TYPE_STRUCT, "iiay") > 0) {
    Pixmap pixmap;
    sd_bus_message_read(message, "ii", &pixmap.width, &pixmap.height);
    const void* bytes = nullptr;
    std::size_t size = 0;
    sd_bus_message_read_array(message, SD_BUS_TYPE_BYTE, &bytes, &size);
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    pixmap.bytes.assign(first, first + size);
    pixmaps.push_back(std::move(pixmap));
    sd_bus_message_exit_container(message);
  }
  sd_bus_message_exit_container(message);
}

void readProperty(sd_bus_message* message, const std::string& name, const std::string& type,
                  ItemProperties& properties) {
  if (type == "s" || type == "o") {
    const char* text = "";
    sd_bus_message_read_basic(message, type[0], &text);
    properties.texts[name] = text;
  } else if (type == "i" || type == "b") {
    int number = 0;
    sd_bus_message_read_basic(message, type[0], &number);
    properties.numbers[name] = number;
  } else if (type == "a(iiay)") {
    readPixmaps(message, name == "IconPixmap" ? properties.pixmaps : properties.others[name]);
  } else if (type == "(sa(iiay)ss)") {
    const char* icon = "";
    const char* title = "";
    const char* description = "";
    std::vector<Pixmap> pixmaps;
    sd_bus_message_enter_container(message, SD_BUS_TYPE_STRUCT, "sa(iiay)ss");
    sd_bus_message_read(message, "s", &icon);
    readPixmaps(message, pixmaps);
    sd_bus_message_read(message, "ss", &title, &description);
    sd_bus_message_exit_container(message);
    properties.toolTipTitle = title;
    properties.toolTipDescription = description;
  } else {
    sd_bus_message_skip(message, type.c_str());
  }
}

}  // namespace

const sd_bus_vtable ScriptedPanel::table[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_METHOD("RegisterStatusNotifierItem", "s", "", onRegister, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_PROPERTY("IsStatusNotifierHostRegistered", "b", getHasHost, 0, 0),
    SD_BUS_SIGNAL("StatusNotifierHostRegistered", "", 0),
    SD_BUS_SIGNAL("StatusNotifierHostUnregistered", "", 0),
    SD_BUS_SIGNAL("StatusNotifierItemUnregistered", "s", 0),
    SD_BUS_VTABLE_END,
};

ScriptedPanel::ScriptedPanel(BusConnection& connection) : ScriptedPanel(connection, Script{}) {}

ScriptedPanel::ScriptedPanel(BusConnection& connection, Script script)
    : connection_(connection), script_(script) {
  connection_.add(*this);
}

ScriptedPanel::~ScriptedPanel() {
  connection_.remove(*this);
  if (bus_ != nullptr) {
    sd_bus_release_name(bus_, watcherName);
  }
}

void ScriptedPanel::busConnected(sd_bus& bus) {
  bus_ = &bus;
  sd_bus_add_object_vtable(bus_, out(object_), watcherPath, watcherName, table, this);
  sd_bus_match_signal_async(bus_, out(match_), nullptr, nullptr, "org.kde.StatusNotifierItem",
                            nullptr, onSignal, nullptr, this);
  sd_bus_request_name_async(
      bus_, out(name_), watcherName, 0, [](sd_bus_message*, void*, sd_bus_error*) { return 0; },
      nullptr);
}

void ScriptedPanel::busLost() {
  bus_ = nullptr;
  for (BusSlot* slot : {&object_, &match_, &name_, &call_}) {
    slot->reset();
  }
}

int ScriptedPanel::onRegister(sd_bus_message* call, void* self, sd_bus_error*) {
  auto* panel = static_cast<ScriptedPanel*>(self);
  if (panel->script_.refusals > 0) {
    --panel->script_.refusals;
    return sd_bus_reply_method_errorf(call, SD_BUS_ERROR_UNKNOWN_OBJECT, "not ready");
  }
  const char* name = "";
  sd_bus_message_read(call, "s", &name);
  // An item that gives a path is on the caller's connection.
  panel->items_.emplace_back(*name == '/' ? std::string(sd_bus_message_get_sender(call)) + name
                                          : std::string(name));
  return sd_bus_reply_method_return(call, "");
}

int ScriptedPanel::onSignal(sd_bus_message* signal, void* self, sd_bus_error*) {
  std::string member = sd_bus_message_get_member(signal);
  if (member == "XAyatanaNewLabel") {
    const char* label = "";
    const char* guide = "";
    sd_bus_message_read(signal, "ss", &label, &guide);
    member += std::string(":") + label;
  }
  const std::string path = sd_bus_message_get_path(signal);
  member += path == itemPath ? "" : " of " + path;
  static_cast<ScriptedPanel*>(self)->signals_.push_back(std::move(member));
  return 0;
}

int ScriptedPanel::getHasHost(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                              void* self, sd_bus_error*) {
  auto* panel = static_cast<ScriptedPanel*>(self);
  panel->hasAnsweredForHost_ = true;
  return sd_bus_message_append(reply, "b", panel->script_.hasHost ? 1 : 0);
}

void ScriptedPanel::setHasHost(bool hasHost) {
  script_.hasHost = hasHost;
  sd_bus_emit_signal(bus_, watcherPath, watcherName,
                     hasHost ? "StatusNotifierHostRegistered" : "StatusNotifierHostUnregistered",
                     "");
}

void ScriptedPanel::drop(const std::string& item) {
  sd_bus_emit_signal(bus_, watcherPath, watcherName, "StatusNotifierItemUnregistered", "s",
                     item.c_str());
}

void ScriptedPanel::ask(std::size_t back) {
  properties.reset();
  const std::string& item = items_.at(items_.size() - 1 - back);
  const std::size_t path = item.find('/');
  sd_bus_call_method_async(bus_, out(call_), item.substr(0, path).c_str(),
                           path == std::string::npos ? itemPath : item.c_str() + path,
                           "org.freedesktop.DBus.Properties", "GetAll", onProperties, this, "s",
                           "org.kde.StatusNotifierItem");
}

int ScriptedPanel::onProperties(sd_bus_message* reply, void* self, sd_bus_error*) {
  ItemProperties properties;
  sd_bus_message_enter_container(reply, SD_BUS_TYPE_ARRAY, "{sv}");
  while (sd_bus_message_enter_container(reply, SD_BUS_TYPE_DICT_ENTRY, "sv") > 0) {
    const char* name = "";
    const char* type = "";
    sd_bus_message_read(reply, "s", &name);
    sd_bus_message_peek_type(reply, nullptr, &type);
    const std::string kind = type;
    sd_bus_message_enter_container(reply, SD_BUS_TYPE_VARIANT, kind.c_str());
    readProperty(reply, name, kind, properties);
    sd_bus_message_exit_container(reply);
    sd_bus_message_exit_container(reply);
  }
  static_cast<ScriptedPanel*>(self)->properties = std::move(properties);
  return 0;
}

}  // namespace vantora::test
