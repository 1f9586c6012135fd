// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/scripted_tray.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace vantora::test {
namespace {

struct Free {
  void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
std::unique_ptr<T, Free> owned(T* reply) {
  return std::unique_ptr<T, Free>(reply);
}

constexpr int height = 24;  // of the tray, in pixels
constexpr std::uint32_t dockRequest = 0;

}  // namespace

void setResources(const std::string& display, const std::string& resources) {
  xcb_connection_t* x = xcb_connect(display.c_str(), nullptr);
  const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(x)).data->root;
  xcb_change_property(x, XCB_PROP_MODE_REPLACE, root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, 8,
                      static_cast<std::uint32_t>(resources.size()), resources.data());
  owned(xcb_get_input_focus_reply(x, xcb_get_input_focus(x), nullptr));
  xcb_disconnect(x);
}

ScriptedTray::ScriptedTray(const std::string& display, Script script) : script_(script) {
  x_ = xcb_connect(display.c_str(), nullptr);
  screen_ = xcb_setup_roots_iterator(xcb_get_setup(x_)).data;
  owner_ = xcb_generate_id(x_);
  const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_create_window(x_, screen_->root_depth, owner_, screen_->root, 100, 50, 400, height, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, XCB_CW_EVENT_MASK,
                    &events);
  xcb_map_window(x_, owner_);
  publish();
}

ScriptedTray::~ScriptedTray() {
  xcb_disconnect(x_);
}

void ScriptedTray::setOrientation() {
  const std::uint32_t orientation = script_.isVertical ? 1 : 0;
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, owner_, atom("_NET_SYSTEM_TRAY_ORIENTATION"),
                      XCB_ATOM_CARDINAL, 32, 1, &orientation);
}

void ScriptedTray::turn(bool isVertical) {
  script_.isVertical = isVertical;
  setOrientation();
  xcb_flush(x_);
}

void ScriptedTray::publish() {
  setOrientation();
  if (script_.isTranslucent) {
    const xcb_visualid_t visual = translucentVisual();
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, owner_, atom("_NET_SYSTEM_TRAY_VISUAL"),
                        XCB_ATOM_VISUALID, 32, 1, &visual);
  }
  setColours();
  const xcb_atom_t selection = atom("_NET_SYSTEM_TRAY_S0");
  xcb_set_selection_owner(x_, owner_, selection, XCB_CURRENT_TIME);
  xcb_client_message_event_t here{};
  here.response_type = XCB_CLIENT_MESSAGE;
  here.format = 32;
  here.window = screen_->root;
  here.type = atom("MANAGER");
  here.data.data32[1] = selection;
  here.data.data32[2] = owner_;
  xcb_send_event(x_, 0, screen_->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY,
                 reinterpret_cast<const char*>(&here));
  xcb_flush(x_);
}

void ScriptedTray::setColours() {
  if (script_.grey) {
    std::array<std::uint32_t, 12> colours{};
    colours.fill(*script_.grey);
    xcb_change_property(x_, XCB_PROP_MODE_REPLACE, owner_, atom("_NET_SYSTEM_TRAY_COLORS"),
                        XCB_ATOM_CARDINAL, 32, colours.size(), colours.data());
  }
}

void ScriptedTray::setGrey(std::uint16_t grey) {
  script_.grey = grey;
  setColours();
  xcb_flush(x_);
}

xcb_atom_t ScriptedTray::atom(const std::string& name) {
  xcb_atom_t& value = atoms_[name];
  if (value == XCB_ATOM_NONE) {
    const auto reply = owned(xcb_intern_atom_reply(
        x_, xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(name.size()), name.c_str()),
        nullptr));
    value = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }
  return value;
}

xcb_visualid_t ScriptedTray::translucentVisual() const {
  for (auto depths = xcb_screen_allowed_depths_iterator(screen_); depths.rem > 0;
       xcb_depth_next(&depths)) {
    if (depths.data->depth == 32 && depths.data->visuals_len > 0) {
      return xcb_depth_visuals_iterator(depths.data).data->visual_id;
    }
  }
  return 0;
}

void ScriptedTray::handleEvents() {
  while (const auto event = owned(xcb_poll_for_event(x_))) {
    switch (event->response_type & 0x7FU) {
      case XCB_CLIENT_MESSAGE: {
        const auto& message = reinterpret_cast<const xcb_client_message_event_t&>(*event);
        if (message.type == atom("_NET_SYSTEM_TRAY_OPCODE") &&
            message.data.data32[1] == dockRequest) {
          requests_.push_back(message.data.data32[2]);
          if (script_.embeds) {
            embed();
          }
        }
        break;
      }
      case XCB_CONFIGURE_REQUEST: {
        const auto& wish = reinterpret_cast<const xcb_configure_request_event_t&>(*event);
        resize(wish.window, wish.width, wish.height);
        break;
      }
      case XCB_MAP_REQUEST:
        xcb_map_window(x_, reinterpret_cast<const xcb_map_request_event_t&>(*event).window);
        break;
      default:
        break;
    }
  }
  xcb_flush(x_);
}

void ScriptedTray::embed() {
  const xcb_window_t window = this->window();
  const xcb_window_t socket = xcb_generate_id(x_);
  const std::uint32_t events =
      XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY;
  xcb_create_window(x_, screen_->root_depth, socket, owner_, 5, 0, 1, height, 0,
                    XCB_WINDOW_CLASS_INPUT_OUTPUT, screen_->root_visual, XCB_CW_EVENT_MASK,
                    &events);
  xcb_map_window(x_, socket);
  sockets_[window] = socket;
  const auto asked = size();
  xcb_reparent_window(x_, window, socket, 0, 0);
  resize(window, asked.first, asked.second);
}

void ScriptedTray::resize(xcb_window_t window, int width, int /*height*/) {
  const auto given = static_cast<std::uint32_t>(std::clamp(width, 1, script_.widest));
  const std::array<std::uint32_t, 2> size{given, height};
  const std::uint16_t both = XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT;
  xcb_configure_window(x_, sockets_[window], both, size.data());
  xcb_configure_window(x_, window, both, size.data());
  xcb_flush(x_);
}

void ScriptedTray::giveBack() {
  xcb_reparent_window(x_, window(), screen_->root, 0, 0);
  xcb_flush(x_);
}

void ScriptedTray::setWidest(int pixels) {
  script_.widest = pixels;
  resize(window(), pixels, height);
}

void ScriptedTray::wipe() {
  xcb_clear_area(x_, 1, window(), 0, 0, 0, 0);
  xcb_flush(x_);
}

void ScriptedTray::press(int button, int x, int y) {
  sendButton(XCB_BUTTON_PRESS, button, x, y, 0);
}

void ScriptedTray::release(int button, int x, int y, std::uint32_t time) {
  sendButton(XCB_BUTTON_RELEASE, button, x, y, time);
}

void ScriptedTray::sendButton(std::uint8_t type, int button, int x, int y, std::uint32_t time) {
  const auto corner = place();
  xcb_button_press_event_t event{};
  event.response_type = type;
  event.detail = static_cast<xcb_button_t>(button);
  event.time = time;
  event.root = screen_->root;
  event.event = window();
  event.event_x = static_cast<std::int16_t>(x);
  event.event_y = static_cast<std::int16_t>(y);
  event.root_x = static_cast<std::int16_t>(corner.first + x);
  event.root_y = static_cast<std::int16_t>(corner.second + y);
  event.same_screen = 1;
  const std::uint32_t mask =
      type == XCB_BUTTON_PRESS ? XCB_EVENT_MASK_BUTTON_PRESS : XCB_EVENT_MASK_BUTTON_RELEASE;
  xcb_send_event(x_, 0, window(), mask, reinterpret_cast<const char*>(&event));
  xcb_flush(x_);
}

void ScriptedTray::enter(int x, int y, xcb_notify_mode_t mode) {
  sendCrossing(XCB_ENTER_NOTIFY, x, y, mode);
}

void ScriptedTray::leave(xcb_notify_mode_t mode) {
  sendCrossing(XCB_LEAVE_NOTIFY, 0, 0, mode);
}

void ScriptedTray::sendCrossing(std::uint8_t type, int x, int y, xcb_notify_mode_t mode) {
  const auto corner = place();
  xcb_enter_notify_event_t event{};
  event.response_type = type;
  event.root = screen_->root;
  event.event = window();
  event.event_x = static_cast<std::int16_t>(x);
  event.event_y = static_cast<std::int16_t>(y);
  event.root_x = static_cast<std::int16_t>(corner.first + x);
  event.root_y = static_cast<std::int16_t>(corner.second + y);
  event.mode = static_cast<std::uint8_t>(mode);
  const std::uint32_t mask =
      type == XCB_ENTER_NOTIFY ? XCB_EVENT_MASK_ENTER_WINDOW : XCB_EVENT_MASK_LEAVE_WINDOW;
  xcb_send_event(x_, 0, window(), mask, reinterpret_cast<const char*>(&event));
  xcb_flush(x_);
}

bool ScriptedTray::isThere() {
  return !requests_.empty() &&
         owned(xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window()),
                                               nullptr)) != nullptr;
}

bool ScriptedTray::isMapped() {
  const auto reply =
      owned(xcb_get_window_attributes_reply(x_, xcb_get_window_attributes(x_, window()), nullptr));
  return reply != nullptr && reply->map_state != XCB_MAP_STATE_UNMAPPED;
}

bool ScriptedTray::isEmbedded() {
  const auto reply = owned(xcb_query_tree_reply(x_, xcb_query_tree(x_, window()), nullptr));
  return reply != nullptr && reply->parent != screen_->root;
}

std::pair<int, int> ScriptedTray::size() {
  const auto reply = owned(xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window()), nullptr));
  return reply != nullptr ? std::pair<int, int>(reply->width, reply->height) : std::pair(0, 0);
}

std::pair<int, int> ScriptedTray::place() {
  const auto reply = owned(xcb_translate_coordinates_reply(
      x_, xcb_translate_coordinates(x_, window(), screen_->root, 0, 0), nullptr));
  return reply != nullptr ? std::pair<int, int>(reply->dst_x, reply->dst_y) : std::pair(0, 0);
}

std::vector<std::uint32_t> ScriptedTray::pixels() {
  const auto [wide, high] = size();
  const auto reply = owned(xcb_get_image_reply(
      x_,
      xcb_get_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, window(), 0, 0, static_cast<std::uint16_t>(wide),
                    static_cast<std::uint16_t>(high), ~0U),
      nullptr));
  const auto count = static_cast<std::size_t>(wide) * static_cast<std::size_t>(high);
  if (reply == nullptr || xcb_get_image_data_length(reply.get()) != static_cast<int>(count) * 4) {
    return {};
  }
  const auto* first = reinterpret_cast<const std::uint32_t*>(xcb_get_image_data(reply.get()));
  return {first, first + count};
}

std::string ScriptedTray::text(const char* property) {
  const auto reply = owned(xcb_get_property_reply(
      x_, xcb_get_property(x_, 0, window(), atom(property), XCB_ATOM_ANY, 0, 64), nullptr));
  if (reply == nullptr || reply->format != 8) {
    return {};
  }
  return {static_cast<const char*>(xcb_get_property_value(reply.get())), reply->value_len};
}

std::vector<std::uint32_t> ScriptedTray::info() {
  const auto reply = owned(xcb_get_property_reply(
      x_, xcb_get_property(x_, 0, window(), atom("_XEMBED_INFO"), XCB_ATOM_ANY, 0, 2), nullptr));
  if (reply == nullptr || reply->format != 32) {
    return {};
  }
  const auto* first = static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
  return {first, first + reply->value_len};
}

}  // namespace vantora::test
