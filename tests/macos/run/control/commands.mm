// SPDX-License-Identifier: MIT
#include "control/commands.hpp"

#include <fstream>
#include <functional>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "control/machine_settings.hpp"
#include "control/state.hpp"
#include "frameworks/AppKit/application.hpp"
#include "frameworks/AppKit/controls.hpp"
#include "frameworks/AppKit/graphics.hpp"
#include "frameworks/AppKit/workspace.hpp"
#include "machine/machine.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

Json click(NSEventType type) {
  postMouse(type);
  return true;
}

// VoiceOver and the like press the button without any event of the mouse.
Json press() {
  postEvent([] { [shownItem().button performClick:nil]; });
  return true;
}

Json choose(std::istream& arguments) {
  std::string title;
  std::getline(arguments >> std::ws, title);
  return chooseFromMenu(title);
}

// What double-clicking the running application's icon means.
Json reopen() {
  return static_cast<bool>([NSApp.delegate applicationShouldHandleReopen:NSApp
                                                       hasVisibleWindows:NO]);
}

Json picture(std::istream& arguments) {
  double scale = 1;
  std::string file;
  arguments >> scale >> file;
  NSStatusItem* item = shownItem();
  if (item.button.image == nil) {
    return nullptr;
  }
  const Drawing drawing = draw(item.button.image, scale);
  std::ofstream out(file, std::ios::binary);
  out << "P5\n" << drawing.width << ' ' << drawing.height << "\n255\n";
  out.write(reinterpret_cast<const char*>(drawing.pixels.data()),
            static_cast<std::streamsize>(drawing.pixels.size()));
  return {{"width", drawing.width}, {"height", drawing.height}};
}

// Everything that the item said since this was asked the last time.
Json labels() {
  std::vector<std::string> said;
  [shownItem().button standInTakeLabels:said];
  return said;
}

const std::map<std::string, std::function<Json(std::istream&)>>& commands() {
  static const std::map<std::string, std::function<Json(std::istream&)>> all = {
      {"state", [](std::istream&) { return currentState(); }},
      {"labels", [](std::istream&) { return labels(); }},
      {"left", [](std::istream&) { return click(NSEventTypeLeftMouseUp); }},
      {"right", [](std::istream&) { return click(NSEventTypeRightMouseUp); }},
      {"press", [](std::istream&) { return press(); }},
      {"choose", &choose},
      {"reopen", [](std::istream&) { return reopen(); }},
      {"picture", &picture},
      {"set", &setMachine},
      {"power", [](std::istream&) { return Json(announcePowerChange()); }},
      {"sleep", [](std::istream&) { return announceSleep(), Json(true); }},
      {"wake", [](std::istream&) { return announceWake(), Json(true); }},
      // As a log-out or a restart asks.
      {"quit",
       [](std::istream&) {
         postEvent([] { [NSApp terminate:nil]; });
         return Json(true);
       }},
  };
  return all;
}

}  // namespace

std::string runCommand(const std::string& line) {
  @autoreleasepool {
    std::istringstream arguments(line);
    std::string name;
    arguments >> name;
    const auto command = commands().find(name);
    const Json answer = command != commands().end() ? command->second(arguments)
                                                    : Json{{"error", "no such command"}};
    return answer.dump();
  }
}

}  // namespace standin
