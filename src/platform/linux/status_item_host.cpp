// SPDX-License-Identifier: MIT
#include "platform/linux/status_item_host.hpp"

#include <array>
#include <utility>

namespace vantora {

StatusItemHost statusItemHost(std::string_view processName) {
  while (!processName.empty() && processName.back() == '\n') {
    processName.remove_suffix(1);
  }
  // Xfce's panel runs each plug-in as "panel-NUMBER-PLUGIN".
  if (processName.starts_with("panel-") && processName.ends_with("-systray")) {
    return StatusItemHost::xfce;
  }
  constexpr std::array<std::pair<std::string_view, StatusItemHost>, 11> known{{
      {"waybar", StatusItemHost::waybar},
      {".waybar-wrapped", StatusItemHost::waybar},  // NixOS starts programs by such a name
      {"notification-ar", StatusItemHost::mate},    // notification-area-applet
      {"mate-panel", StatusItemHost::mate},
      {"gnome-shell", StatusItemHost::gnome},
      {"xfce4-panel", StatusItemHost::xfce},
      {"kded5", StatusItemHost::plasma},
      {"kded6", StatusItemHost::plasma},
      {"plasmashell", StatusItemHost::plasma},
      {"lxqt-panel", StatusItemHost::lxqt},
      {"wrapper-2.0", StatusItemHost::xfce},  // Xfce's plug-in host before it sets its name
  }};
  for (const auto& [name, host] : known) {
    if (processName == name) {
      return host;
    }
  }
  return StatusItemHost::other;
}

PictureForm pictureForm(StatusItemHost host) {
  switch (host) {
    case StatusItemHost::waybar:
    case StatusItemHost::mate:
      return PictureForm::wide;
    case StatusItemHost::gnome:
      return PictureForm::label;
    case StatusItemHost::xfce:
    case StatusItemHost::plasma:
    case StatusItemHost::lxqt:
    case StatusItemHost::other:
      break;
  }
  return PictureForm::square;
}

bool keepsTrayWindowWide(StatusItemHost host) {
  return host == StatusItemHost::xfce;
}

Ink statusItemInk(StatusItemHost host, ColorScheme scheme) {
  // The top bar is dark in GNOME's own style, whatever applications prefer. The others
  // have a style of their own, dark more often than not. A desktop that prefers dark has
  // no light panel; one that prefers light may well have a dark panel, as Plasma has with
  // its Breeze Twilight.
  const bool isPanelDark = host == StatusItemHost::gnome || scheme == ColorScheme::dark;
  return isPanelDark ? Ink::light : Ink::lightOnPlate;
}

std::string toolTipTitle(StatusItemHost host, std::string_view text) {
  const bool isMarkup = host == StatusItemHost::waybar;
  std::string title;
  title.reserve(text.size());
  for (std::size_t index = 0; index < text.size(); ++index) {
    const char byte = text[index];
    if (text.substr(index).starts_with(". ")) {
      title += '\n';
      ++index;
    } else if (isMarkup && byte == '&') {
      title += "&amp;";
    } else if (isMarkup && byte == '<') {
      title += "&lt;";
    } else if (isMarkup && byte == '>') {
      title += "&gt;";
    } else {
      title += byte;
    }
  }
  return title;
}

bool showsToolTip(StatusItemHost host) {
  return host != StatusItemHost::gnome;
}

bool repeatsDescription(StatusItemHost host) {
  return host == StatusItemHost::xfce;
}

std::string_view describe(StatusItemSituation situation) {
  switch (situation) {
    case StatusItemSituation::shown:
      return "O item de status está no painel.";
    case StatusItemSituation::noHost:
      return "Nenhum painel mostra itens de status; o item aparece quando houver um.";
    case StatusItemSituation::noBus:
      return "Sem conexão com o D-Bus da sessão; o item de status aparece quando houver uma.";
  }
  return {};
}

}  // namespace vantora
