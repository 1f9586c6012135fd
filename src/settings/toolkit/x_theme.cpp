// SPDX-License-Identifier: MIT
#include "settings/toolkit/x_theme.hpp"

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string_view>

#include "settings/toolkit/x_settings.hpp"

namespace vantora {
namespace {

struct Free {
  void operator()(void* reply) const { std::free(reply); }
};
template <typename Reply>
using Owned = std::unique_ptr<Reply, Free>;

xcb_atom_t atom(xcb_connection_t* connection, std::string_view name) {
  const Owned<xcb_intern_atom_reply_t> reply(xcb_intern_atom_reply(
      connection,
      xcb_intern_atom(connection, 0, static_cast<std::uint16_t>(name.size()), name.data()),
      nullptr));
  return reply != nullptr ? reply->atom : xcb_atom_t{XCB_ATOM_NONE};
}

xcb_window_t ownerOf(xcb_connection_t* connection, xcb_atom_t selection) {
  const Owned<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
      connection, xcb_get_selection_owner(connection, selection), nullptr));
  return reply != nullptr ? reply->owner : xcb_window_t{XCB_NONE};
}

}  // namespace

XTheme::XTheme(xcb_connection_t* connection, int screen)
    : connection_(connection),
      property_(atom(connection, "_XSETTINGS_SETTINGS")),
      manager_(ownerOf(connection, atom(connection, "_XSETTINGS_S" + std::to_string(screen)))) {
  if (manager_ != XCB_NONE) {
    // What the toolkit asks for on the same connection: one wish takes the other's place.
    const std::uint32_t events = XCB_EVENT_MASK_STRUCTURE_NOTIFY | XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_change_window_attributes(connection_, manager_, XCB_CW_EVENT_MASK, &events);
  }
}

std::string XTheme::name() const {
  if (manager_ == XCB_NONE) {
    return {};
  }
  constexpr std::uint32_t maxWords = 1U << 14U;
  const Owned<xcb_get_property_reply_t> reply(xcb_get_property_reply(
      connection_, xcb_get_property(connection_, 0, manager_, property_, XCB_ATOM_ANY, 0, maxWords),
      nullptr));
  if (reply == nullptr || reply->format != 8) {
    return {};
  }
  const auto* bytes = static_cast<const std::uint8_t*>(xcb_get_property_value(reply.get()));
  const auto size = static_cast<std::size_t>(xcb_get_property_value_length(reply.get()));
  return xSettingText({bytes, size}, "Net/ThemeName").value_or(std::string());
}

bool XTheme::isChangedBy(const xcb_generic_event_t& event) const {
  constexpr std::uint8_t sentByAClient = 0x80;
  switch (event.response_type & ~sentByAClient) {
    case XCB_PROPERTY_NOTIFY: {
      const auto& change = reinterpret_cast<const xcb_property_notify_event_t&>(event);
      return change.window == manager_ && change.atom == property_;
    }
    case XCB_DESTROY_NOTIFY:
      return reinterpret_cast<const xcb_destroy_notify_event_t&>(event).window == manager_;
    default:
      return false;
  }
}

}  // namespace vantora
