// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/status_notifier_item.hpp"

#include <span>
#include <utility>

#include "platform/linux/panels/status_item_picture.hpp"

namespace vantora {
namespace {

constexpr const char* itemInterface = "org.kde.StatusNotifierItem";

StatusNotifierContent& contentOf(void* item) {
  return static_cast<StatusNotifierItem*>(item)->content();
}

// One element of a(iiay), its bytes written straight into the message.
int appendPicture(sd_bus_message* reply, const StatusNotifierContent::Picture& picture, Ink ink) {
  int result = sd_bus_message_open_container(reply, SD_BUS_TYPE_STRUCT, "iiay");
  if (result < 0) {
    return result;
  }
  const AlphaBitmap& bitmap = picture.bitmap;
  result = sd_bus_message_append(reply, "ii", bitmap.width, bitmap.height);
  if (result < 0) {
    return result;
  }
  const std::size_t size = bitmap.pixels.size() * 4;
  void* space = nullptr;
  result = sd_bus_message_append_array_space(reply, SD_BUS_TYPE_BYTE, size, &space);
  if (result < 0) {
    return result;
  }
  tint(bitmap, ink, picture.cornerRadius, std::span(static_cast<std::uint8_t*>(space), size));
  return sd_bus_message_close_container(reply);
}

int getIconPixmap(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* item,
                  sd_bus_error*) {
  StatusNotifierContent& content = contentOf(item);
  int result = sd_bus_message_open_container(reply, SD_BUS_TYPE_ARRAY, "(iiay)");
  for (std::size_t index = 0; result >= 0 && index < content.pictureCount(); ++index) {
    result = appendPicture(reply, content.picture(index), content.ink());
  }
  return result < 0 ? result : sd_bus_message_close_container(reply);
}

int getToolTip(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* item,
               sd_bus_error*) {
  // Icon name, icon pixmaps (none), title, description. The lines are in the title:
  // every panel shows it, while some omit the description.
  return sd_bus_message_append(reply, "(sa(iiay)ss)", "", 0, contentOf(item).toolTip().c_str(), "");
}

int getAccessibleDescription(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply,
                             void* item, sd_bus_error*) {
  return sd_bus_message_append(reply, "s", contentOf(item).accessibleDescription().c_str());
}

int getLabel(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* item,
             sd_bus_error*) {
  return sd_bus_message_append(reply, "s", contentOf(item).label().c_str());
}

// Properties that never change. The name of the property comes with the call.
int getFixedText(sd_bus*, const char*, const char*, const char* property, sd_bus_message* reply,
                 void* item, sd_bus_error*) {
  struct Fixed {
    std::string_view property;
    const char* value;
  };
  const StatusNotifierIdentity& identity = static_cast<StatusNotifierItem*>(item)->identity();
  const Fixed fixed[] = {
      {"Category", "SystemServices"},
      {"Id", identity.id.c_str()},
      {"Title", identity.title.c_str()},
      {"Status", "Active"},
  };
  for (const Fixed& entry : fixed) {
    if (entry.property == property) {
      return sd_bus_message_append(reply, "s", entry.value);
    }
  }
  return sd_bus_message_append(reply, "s", "");  // IconName and its relatives: pixmaps only
}

int getNoPixmap(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
                sd_bus_error*) {
  return sd_bus_message_append(reply, "a(iiay)", 0);
}

int getFalse(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
             sd_bus_error*) {
  return sd_bus_message_append(reply, "b", 0);
}

int getZero(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void*,
            sd_bus_error*) {
  return sd_bus_message_append(reply, "i", 0);
}

int getMenu(sd_bus*, const char*, const char*, const char*, sd_bus_message* reply, void* item,
            sd_bus_error*) {
  return sd_bus_message_append(reply, "o", static_cast<StatusNotifierItem*>(item)->menuPath());
}

// The wheel has no meaning here; it is answered, so that no panel waits or complains.
int ignore(sd_bus_message* call, void*, sd_bus_error*) {
  return sd_bus_reply_method_return(call, "");
}

// More tables of the same interface, each present only while the item has the thing: a
// panel decides by the presence of a property what it shows.
const sd_bus_vtable labelTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("XAyatanaLabel", "s", getLabel, 0, 0),
    SD_BUS_PROPERTY("XAyatanaLabelGuide", "s", getLabel, 0, 0),
    SD_BUS_SIGNAL("XAyatanaNewLabel", "ss", 0),
    SD_BUS_VTABLE_END,
};

const sd_bus_vtable menuTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Menu", "o", getMenu, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_VTABLE_END,
};

}  // namespace

// Middle click opens the settings as the left one does. Panels that show our menu never
// call ContextMenu; those that only know that call get the settings too, which offer all
// that the menu offers but the end.
const sd_bus_vtable StatusNotifierItem::itemTable[] = {
    SD_BUS_VTABLE_START(0),
    SD_BUS_PROPERTY("Category", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Id", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Title", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("Status", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("WindowId", "i", getZero, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconName", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("IconPixmap", "a(iiay)", getIconPixmap, 0, 0),
    SD_BUS_PROPERTY("IconAccessibleDesc", "s", getAccessibleDescription, 0, 0),
    SD_BUS_PROPERTY("OverlayIconName", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionIconName", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    // Empty, for panels that complain about each that is missing, as LXQt's does.
    SD_BUS_PROPERTY("IconThemePath", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("OverlayIconPixmap", "a(iiay)", getNoPixmap, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionIconPixmap", "a(iiay)", getNoPixmap, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("AttentionMovieName", "s", getFixedText, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_PROPERTY("ToolTip", "(sa(iiay)ss)", getToolTip, 0, 0),
    SD_BUS_PROPERTY("ItemIsMenu", "b", getFalse, 0, SD_BUS_VTABLE_PROPERTY_CONST),
    SD_BUS_METHOD("Activate", "ii", "", onActivate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("SecondaryActivate", "ii", "", onActivate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ContextMenu", "ii", "", onActivate, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("ProvideXdgActivationToken", "s", "", onToken, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_METHOD("Scroll", "is", "", ignore, SD_BUS_VTABLE_UNPRIVILEGED),
    SD_BUS_SIGNAL("NewTitle", "", 0),
    SD_BUS_SIGNAL("NewIcon", "", 0),
    SD_BUS_SIGNAL("NewAttentionIcon", "", 0),
    SD_BUS_SIGNAL("NewOverlayIcon", "", 0),
    SD_BUS_SIGNAL("NewToolTip", "", 0),
    SD_BUS_SIGNAL("NewStatus", "s", 0),
    SD_BUS_VTABLE_END,
};

StatusNotifierItem::StatusNotifierItem(BusConnection& connection, StatusNotifierContent& content,
                                       StatusNotifierEvents& events,
                                       StatusNotifierIdentity identity)
    : connection_(connection), content_(content), events_(events), identity_(std::move(identity)) {
  connection_.add(*this);
}

StatusNotifierItem::~StatusNotifierItem() {
  connection_.remove(*this);
}

void StatusNotifierItem::busConnected(sd_bus& bus) {
  bus_ = &bus;
  exportTable(object_, itemTable);
  exportLabel();
  exportMenu();
}

void StatusNotifierItem::busLost() {
  bus_ = nullptr;
  token_.clear();
  menuObject_.reset();
  labelObject_.reset();
  object_.reset();
}

void StatusNotifierItem::setHasLabel(bool hasLabel) {
  if (hasLabel != hasLabel_) {
    hasLabel_ = hasLabel;
    exportLabel();
  }
}

void StatusNotifierItem::exportTable(BusSlot& object, const sd_bus_vtable* table) {
  sd_bus_add_object_vtable(bus_, out(object), identity_.path.c_str(), itemInterface, table, this);
}

void StatusNotifierItem::exportLabel() {
  labelObject_.reset();
  if (bus_ != nullptr && hasLabel_) {
    exportTable(labelObject_, labelTable);
  }
}

void StatusNotifierItem::setMenu(const char* menuPath) {
  menuPath_ = menuPath;
  exportMenu();
}

void StatusNotifierItem::exportMenu() {
  if (bus_ != nullptr && menuPath_ != nullptr) {
    exportTable(menuObject_, menuTable);
  }
}

int StatusNotifierItem::onToken(sd_bus_message* call, void* self, sd_bus_error*) {
  const char* token = "";
  const int result = sd_bus_message_read(call, "s", &token);
  if (result < 0) {
    return result;
  }
  static_cast<StatusNotifierItem*>(self)->token_ = token;
  return sd_bus_reply_method_return(call, "");
}

int StatusNotifierItem::onActivate(sd_bus_message* call, void* self, sd_bus_error*) {
  auto* item = static_cast<StatusNotifierItem*>(self);
  item->events_.activated(std::exchange(item->token_, {}));
  return sd_bus_reply_method_return(call, "");
}

void StatusNotifierItem::announce(const char* signal) {
  if (bus_ != nullptr) {
    sd_bus_emit_signal(bus_, identity_.path.c_str(), itemInterface, signal, "");
  }
}

void StatusNotifierItem::announceIcon() {
  announce("NewIcon");
}

void StatusNotifierItem::announceToolTip() {
  announce("NewToolTip");
}

void StatusNotifierItem::announceLabel(const std::string& label) {
  if (bus_ != nullptr) {
    sd_bus_emit_signal(bus_, identity_.path.c_str(), itemInterface, "XAyatanaNewLabel", "ss",
                       label.c_str(), label.c_str());
  }
}

}  // namespace vantora
