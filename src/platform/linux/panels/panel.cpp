// SPDX-License-Identifier: MIT
#include "platform/linux/panels/panel.hpp"

#include <algorithm>
#include <cstddef>

#include "platform/linux/panels/waybar_configuration.hpp"
#include "status/markup.hpp"

namespace vantora {
namespace {

// Between the usual 22 and twice that. The panel is 24 pixels high unless its user chooses
// another height, which few set above 32.
constexpr std::array<int, 6> mateHeights{24, 25, 26, 28, 30, 32};

constexpr std::array<Panel, 7> panels{{
    {
        .name = "waybar",
        .programs = {"waybar", ".waybar-wrapped"},  // the latter on NixOS
        .form = PictureForm::wide,
        .drawsLargest = true,
        .readsMarkup = true,
        .readsLayout = readWaybarLayout,
    },
    {
        .name = "MATE",
        .programs = {"notification-area-applet", "mate-panel"},
        .form = PictureForm::wide,
        .exactHeights = mateHeights,
        .hasTrayToAsk = true,
    },
    {
        .name = "GNOME",
        .programs = {"gnome-shell"},
        .form = PictureForm::label,
        .hasToolTip = false,
        .isAlwaysDark = true,  // its top bar is, in GNOME's own style
    },
    {
        .name = "Xfce",
        // The panel runs its plug-ins in processes that it names after their numbers;
        // "wrapper-2.0" is their name before that.
        .programs = {"panel-#-systray", "xfce4-panel", "wrapper-2.0"},
        .repeatsDescription = true,
        .keepsTrayWindowWide = true,
    },
    {
        .name = "Plasma",
        .programs = {"kded5", "kded6", "plasmashell"},
        .itemOrder = ItemOrder::leftmost,
    },
    {
        .name = "LXQt",
        .programs = {"lxqt-panel"},
        .itemOrder = ItemOrder::leftmost,
    },
    {
        .name = "swaybar",
        .programs = {"swaybar"},
        .itemOrder = ItemOrder::rightmost,
        .hasToolTip = false,
    },
}};

constexpr Panel unknown{.name = "unknown"};

// TASK_COMM_LEN of linux/sched.h, without the zero byte at the end.
constexpr std::size_t maxProcessName = 15;

bool isDigit(char character) {
  return character >= '0' && character <= '9';
}

/// Whether the kernel calls a process of the program `pattern` by `name`.
bool matches(std::string_view pattern, std::string_view name) {
  const bool isCut = name.size() == maxProcessName;
  for (const char expected : pattern) {
    if (name.empty()) {
      return isCut;
    }
    if (expected == '#') {
      const auto digits = static_cast<std::size_t>(
          std::find_if_not(name.begin(), name.end(), isDigit) - name.begin());
      if (digits == 0) {
        return false;
      }
      name.remove_prefix(digits);
    } else if (name.front() == expected) {
      name.remove_prefix(1);
    } else {
      return false;
    }
  }
  return name.empty();
}

}  // namespace

std::span<const Panel> knownPanels() {
  return panels;
}

const Panel& unknownPanel() {
  return unknown;
}

const Panel& panelOf(std::string_view processName) {
  while (processName.ends_with('\n')) {
    processName.remove_suffix(1);
  }
  for (const Panel& panel : panels) {
    for (const std::string_view program : panel.programs) {
      if (!program.empty() && matches(program, processName)) {
        return panel;
      }
    }
  }
  return unknown;
}

PictureForm formOn(const Panel& panel, bool isVertical) {
  return isVertical && panel.form == PictureForm::wide ? PictureForm::square : panel.form;
}

std::string_view describe(PictureForm form) {
  switch (form) {
    case PictureForm::wide:
      return "imagem inteira";
    case PictureForm::label:
      return "ícone com texto ao lado";
    case PictureForm::square:
      return "quadrado com um módulo";
  }
  return {};
}

Ink inkFor(const Panel& panel, ColorScheme scheme) {
  // Panels have a style of their own, dark more often than not. A desktop that prefers dark
  // has no light panel; one that prefers light may well have a dark panel, as Plasma has
  // with its Breeze Twilight.
  const bool isDark = panel.isAlwaysDark || scheme == ColorScheme::dark;
  return isDark ? Ink::light : Ink::lightOnPlate;
}

std::string toolTipFor(const Panel& panel, std::string_view lines) {
  return panel.readsMarkup ? escapedForMarkup(lines) : std::string(lines);
}

}  // namespace vantora
