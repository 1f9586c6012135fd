// SPDX-License-Identifier: MIT
#include "platform/linux/status_item/tray_pointer.hpp"

#include <cstdint>
#include <utility>

namespace vantora {
namespace {

// A click on an X11 window gives no token. Window managers read the time of the click out
// of an id like this and let the window that carries it come to the front
// (freedesktop's "Startup Notification Protocol", "_TIME").
std::string startupId(std::uint32_t time) {
  return "vantora_TIME" + std::to_string(time);
}

}  // namespace

TrayPointer::TrayPointer(TaskQueue& queue, Popups popups, PostedActions& actions, Item item)
    : queue_(queue), popups_(popups), actions_(actions), item_(std::move(item)) {}

// Tool tips wait until the pointer rests, as the toolkits' do.
void TrayPointer::entered(ScreenPoint pointer) {
  constexpr Seconds rest{0.5};
  hover_ = queue_.runAfter(rest, rest / 5, [this, pointer] {
    hover_.reset();
    std::string text = item_.toolTip();
    if (!text.empty()) {
      popups_.toolTip.show({std::move(text), pointer, item_.isDark()});
    }
  });
}

void TrayPointer::left() {
  hover_.reset();
  popups_.toolTip.hide();
}

void TrayPointer::clicked(const TrayClick& click) {
  left();
  if (click.button == TrayButton::right && actions_.areSet()) {
    openMenu(click);
    return;
  }
  popups_.menu.close();
  actions_.openSettings(startupId(click.time));
}

void TrayPointer::openMenu(const TrayClick& click) {
  const bool wasPaused = actions_.isPaused();
  MenuContent content;
  for (const StatusMenuEntry& entry : statusMenu(wasPaused)) {
    content.entries.push_back({static_cast<std::int32_t>(entry.command), std::string(entry.label)});
  }
  content.pointer = click.pointer;
  content.item = click.window;
  content.isDark = item_.isDark();
  popups_.menu.open(content, [this, wasPaused, time = click.time](std::int32_t id) {
    const auto command = statusMenuCommand(id);
    // The pause state changed while the menu was open: the change was made already.
    const bool isStale =
        command == StatusMenuCommand::togglePause && actions_.isPaused() != wasPaused;
    if (command == StatusMenuCommand::openSettings) {
      actions_.openSettings(startupId(time));
    } else if (command && !isStale) {
      actions_.run(*command);
    }
  });
}

void TrayPointer::close() {
  popups_.menu.close();
  left();
}

}  // namespace vantora
