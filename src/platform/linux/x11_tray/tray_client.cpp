// SPDX-License-Identifier: MIT
#include "platform/linux/x11_tray/tray_client.hpp"

#include <bit>
#include <string_view>

namespace vantora {
namespace {

// System Tray Protocol: the opcode of a docking request.
constexpr std::uint32_t requestDock = 0;
// XEmbed: version of the protocol, and the flag of a client that wants to be shown.
constexpr std::uint32_t xembedVersion = 0;
constexpr std::uint32_t xembedMapped = 1;
// ICCCM, WM_SIZE_HINTS: program specified size, minimum size.
constexpr std::uint32_t sizeHintSize = 1U << 3U;
constexpr std::uint32_t sizeHintMinimum = 1U << 4U;

XReply<xcb_get_property_reply_t> getProperty(xcb_connection_t* x, xcb_window_t window,
                                             xcb_atom_t property, xcb_atom_t type,
                                             std::uint32_t words) {
  return XReply<xcb_get_property_reply_t>(
      xcb_get_property_reply(x, xcb_get_property(x, 0, window, property, type, 0, words), nullptr));
}

template <typename T>
std::span<const T> valuesOf(const xcb_get_property_reply_t* reply) {
  if (reply == nullptr || reply->format != sizeof(T) * 8) {
    return {};
  }
  return {static_cast<const T*>(xcb_get_property_value(reply)), reply->value_len};
}

std::uint16_t dimension(int pixels) {
  return static_cast<std::uint16_t>(pixels);
}

}  // namespace

TrayClient::~TrayClient() {
  if (x_ != nullptr) {
    xcb_disconnect(x_);  // the server destroys the window with the connection
  }
}

bool TrayClient::open(const std::string& display) {
  int number = 0;
  x_ = xcb_connect(display.empty() ? nullptr : display.c_str(), &number);
  if (xcb_connection_has_error(x_) != 0) {
    return false;
  }
  const xcb_setup_t* setup = xcb_get_setup(x_);
  xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
  for (int index = 0; index < number && screens.rem > 1; ++index) {
    xcb_screen_next(&screens);
  }
  screen_ = screens.data;
  const bool isLittle = std::endian::native == std::endian::little;
  const int nativeOrder = isLittle ? XCB_IMAGE_ORDER_LSB_FIRST : XCB_IMAGE_ORDER_MSB_FIRST;
  if (screen_ == nullptr || setup->image_byte_order != nativeOrder) {
    return false;
  }
  internAtoms(number);
  constexpr std::uint32_t maxWords = 1U << 14U;
  const auto resources =
      getProperty(x_, screen_->root, XCB_ATOM_RESOURCE_MANAGER, XCB_ATOM_STRING, maxWords);
  const auto text = valuesOf<char>(resources.get());
  scale_ = scaleFromResources({text.data(), text.size()});
  select(screen_->root, XCB_EVENT_MASK_STRUCTURE_NOTIFY);
  return true;
}

void TrayClient::internAtoms(int screenNumber) {
  const std::string selectionName = "_NET_SYSTEM_TRAY_S" + std::to_string(screenNumber);
  const std::array<std::string_view, atomCount> names{selectionName,
                                                      "MANAGER",
                                                      "_NET_SYSTEM_TRAY_OPCODE",
                                                      "_XEMBED_INFO",
                                                      "_NET_SYSTEM_TRAY_VISUAL",
                                                      "_NET_SYSTEM_TRAY_COLORS",
                                                      "_NET_SYSTEM_TRAY_ORIENTATION",
                                                      "_NET_WM_NAME",
                                                      "UTF8_STRING"};
  std::array<xcb_intern_atom_cookie_t, atomCount> cookies{};
  for (std::size_t index = 0; index < names.size(); ++index) {
    cookies[index] = xcb_intern_atom(x_, 0, static_cast<std::uint16_t>(names[index].size()),
                                     names[index].data());
  }
  for (std::size_t index = 0; index < names.size(); ++index) {
    const XReply<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(x_, cookies[index], nullptr));
    atoms_[index] = reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
  }
}

void TrayClient::select(xcb_window_t target, std::uint32_t events) const {
  xcb_change_window_attributes(x_, target, XCB_CW_EVENT_MASK, &events);
}

bool TrayClient::findTray() {
  const XReply<xcb_get_selection_owner_reply_t> owner(
      xcb_get_selection_owner_reply(x_, xcb_get_selection_owner(x_, atoms_[selection]), nullptr));
  tray_ = owner != nullptr ? owner->owner : xcb_window_t{XCB_NONE};
  if (tray_ == XCB_NONE) {
    return false;
  }
  select(tray_, XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE);
  readOrientation();
  return true;
}

int TrayClient::bitsPerPixel(std::uint8_t depth) const {
  xcb_format_iterator_t formats = xcb_setup_pixmap_formats_iterator(xcb_get_setup(x_));
  for (; formats.rem > 0; xcb_format_next(&formats)) {
    if (formats.data->depth == depth) {
      return formats.data->bits_per_pixel;
    }
  }
  return 0;
}

// The first visual, from the deepest on, that holds pixels as xPixels() writes them: 32 bits,
// a byte for each of red, green and blue. A 30-bit display has ten bits for each.
TrayClient::Visual TrayClient::findVisual(
    const std::function<bool(Visual visual)>& isWanted) const {
  constexpr std::array<std::uint32_t, 3> masks{0xFF0000, 0x00FF00, 0x0000FF};
  constexpr int bitsOfPixel = 32;
  xcb_depth_iterator_t depths = xcb_screen_allowed_depths_iterator(screen_);
  for (; depths.rem > 0; xcb_depth_next(&depths)) {
    if (bitsPerPixel(depths.data->depth) != bitsOfPixel) {
      continue;
    }
    xcb_visualtype_iterator_t visuals = xcb_depth_visuals_iterator(depths.data);
    for (; visuals.rem > 0; xcb_visualtype_next(&visuals)) {
      const xcb_visualtype_t& type = *visuals.data;
      const Visual found{type.visual_id, depths.data->depth};
      if (type._class == XCB_VISUAL_CLASS_TRUE_COLOR &&
          masks == std::array{type.red_mask, type.green_mask, type.blue_mask} && isWanted(found)) {
        return found;
      }
    }
  }
  return {};
}

// The tray's own visual where that has alpha, else the screen's, else any: the window of a
// tray may differ from the tray.
void TrayClient::chooseVisual() {
  constexpr std::uint8_t depthWithAlpha = 32;
  const auto reply = getProperty(x_, tray_, atoms_[visual], XCB_ATOM_VISUALID, 1);
  const auto visuals = valuesOf<std::uint32_t>(reply.get());
  trayDepth_ = TrayDepth::translucent;
  visual_ = findVisual([&](Visual found) {
    return !visuals.empty() && found.id == visuals[0] && found.depth == depthWithAlpha;
  });
  if (visual_.depth != 0) {
    return;
  }
  trayDepth_ = TrayDepth::opaque;
  visual_ = findVisual([this](Visual found) { return found.id == screen_->root_visual; });
  if (visual_.depth == 0) {
    visual_ = findVisual([](Visual found) { return found.depth != depthWithAlpha; });
  }
  if (visual_.depth == 0) {
    visual_ = findVisual([](Visual) { return true; });
  }
}

void TrayClient::readColours() {
  const auto reply = getProperty(x_, tray_, atoms_[colours], XCB_ATOM_CARDINAL, 12);
  ink_ = trayInk(valuesOf<std::uint32_t>(reply.get()));
}

void TrayClient::readOrientation() {
  constexpr std::uint32_t vertical = 1;  // _NET_SYSTEM_TRAY_ORIENTATION_VERT
  const auto reply = getProperty(x_, tray_, atoms_[orientation], XCB_ATOM_CARDINAL, 1);
  const auto values = valuesOf<std::uint32_t>(reply.get());
  isVertical_ = !values.empty() && values[0] == vertical;
}

bool TrayClient::makeWindow(int width, int height) {
  chooseVisual();
  if (visual_.depth == 0) {
    return false;
  }
  readColours();
  colormap_ = xcb_generate_id(x_);
  xcb_create_colormap(x_, XCB_COLORMAP_ALLOC_NONE, colormap_, screen_->root, visual_.id);
  window_ = xcb_generate_id(x_);
  const std::array<std::uint32_t, 4> values{
      0, 0,
      XCB_EVENT_MASK_EXPOSURE | XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_BUTTON_PRESS |
          XCB_EVENT_MASK_BUTTON_RELEASE | XCB_EVENT_MASK_ENTER_WINDOW | XCB_EVENT_MASK_LEAVE_WINDOW,
      colormap_};
  xcb_create_window(x_, visual_.depth, window_, screen_->root, 0, 0, dimension(width),
                    dimension(height), 0, XCB_WINDOW_CLASS_INPUT_OUTPUT, visual_.id,
                    XCB_CW_BACK_PIXEL | XCB_CW_BORDER_PIXEL | XCB_CW_EVENT_MASK | XCB_CW_COLORMAP,
                    values.data());
  setNames();
  context_ = xcb_generate_id(x_);
  xcb_create_gc(x_, context_, window_, 0, nullptr);
  setInfo(0);
  setSize(width, height);
  return true;
}

// A constant name: panels remember by it what they keep of an item, its place or that it is
// hidden. The readings are not for here.
void TrayClient::setNames() const {
  constexpr std::string_view name = "Vantora";
  setText(XCB_ATOM_WM_NAME, XCB_ATOM_STRING, name);
  setText(atoms_[wmName], atoms_[utf8], name);
  setText(XCB_ATOM_WM_CLASS, XCB_ATOM_STRING, {"vantora\0Vantora\0", 16});
}

void TrayClient::setText(xcb_atom_t property, xcb_atom_t type, std::string_view text) const {
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, property, type, 8,
                      static_cast<std::uint32_t>(text.size()), text.data());
}

void TrayClient::setInfo(std::uint32_t flags) const {
  const std::array<std::uint32_t, 2> info{xembedVersion, flags};
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, atoms_[xembedInfo], atoms_[xembedInfo],
                      32, info.size(), info.data());
}

void TrayClient::map() const {
  setInfo(xembedMapped);
  xcb_map_window(x_, window_);
}

void TrayClient::setSize(int width, int height) const {
  // flags, x, y, width, height, minimum width, minimum height, then unused fields
  std::array<std::uint32_t, 18> hints{};
  hints[0] = sizeHintSize | sizeHintMinimum;
  hints[3] = hints[5] = static_cast<std::uint32_t>(width);
  hints[4] = hints[6] = static_cast<std::uint32_t>(height);
  xcb_change_property(x_, XCB_PROP_MODE_REPLACE, window_, XCB_ATOM_WM_NORMAL_HINTS,
                      XCB_ATOM_WM_SIZE_HINTS, 32, hints.size(), hints.data());
  const std::array<std::uint32_t, 2> size{hints[3], hints[4]};
  xcb_configure_window(x_, window_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT,
                       size.data());
}

std::pair<int, int> TrayClient::size() const {
  const XReply<xcb_get_geometry_reply_t> reply(
      xcb_get_geometry_reply(x_, xcb_get_geometry(x_, window_), nullptr));
  return reply != nullptr ? std::pair<int, int>(reply->width, reply->height) : std::pair(0, 0);
}

void TrayClient::requestDocking() const {
  xcb_client_message_event_t message{};
  message.response_type = XCB_CLIENT_MESSAGE;
  message.format = 32;
  message.window = tray_;
  message.type = atoms_[opcode];
  message.data.data32[0] = XCB_CURRENT_TIME;
  message.data.data32[1] = requestDock;
  message.data.data32[2] = window_;
  xcb_send_event(x_, 0, tray_, XCB_EVENT_MASK_NO_EVENT, reinterpret_cast<const char*>(&message));
}

void TrayClient::draw(int width, int height, std::span<const std::uint32_t> pixels) const {
  xcb_put_image(x_, XCB_IMAGE_FORMAT_Z_PIXMAP, window_, context_, dimension(width),
                dimension(height), 0, 0, 0, visual_.depth,
                static_cast<std::uint32_t>(pixels.size_bytes()),
                reinterpret_cast<const std::uint8_t*>(pixels.data()));
}

void TrayClient::destroyWindow() {
  if (window_ != XCB_NONE) {
    xcb_free_gc(x_, context_);
    xcb_destroy_window(x_, window_);
    xcb_free_colormap(x_, colormap_);
    window_ = XCB_NONE;
  }
}

}  // namespace vantora
