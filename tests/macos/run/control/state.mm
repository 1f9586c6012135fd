// SPDX-License-Identifier: MIT
#include "control/state.hpp"

#include "dispatch/main_run_loop.hpp"
#include "dispatch/queues.hpp"
#include "frameworks/AppKit/application.hpp"
#include "frameworks/AppKit/controls.hpp"
#include "frameworks/AppKit/graphics.hpp"
#include "frameworks/Foundation/notifications.hpp"
#include "frameworks/Foundation/process_info.hpp"
#include "frameworks/Foundation/values.hpp"
#include "machine/machine.hpp"
#include "objc/autorelease_pools.hpp"
#include "objc/blocks.hpp"
#include "objc/objects.hpp"

namespace standin {
namespace {

using Json = nlohmann::json;

Json item() {
  NSStatusItem* shown = shownItem();
  if (shown == nil) {
    return nullptr;
  }
  NSStatusBarButton* button = shown.button;
  Json described = {{"length", shown.length},
                    {"imageOnly", button.imagePosition == NSImageOnly},
                    {"toolTip", textOf(button.toolTip)},
                    {"toolTipChanges", button.standInToolTipChanges},
                    {"label", textOf(button.standInLabel)},
                    {"imageChanges", button.standInImageChanges},
                    {"hasMenu", shown.menu != nil}};
  if (button.image != nil) {
    const NSSize size = sizeOf(button.image);
    described["image"] = {
        {"width", size.width}, {"height", size.height}, {"template", isTemplate(button.image)}};
  }
  return described;
}

Json menu() {
  if (!isMenuOpen()) {
    return nullptr;
  }
  Json entries = Json::array();
  for (const MenuEntry& each : openMenu()) {
    entries.push_back({{"title", each.title}, {"enabled", each.isEnabled}});
  }
  return entries;
}

Json timers() {
  Json running = Json::array();
  for (const Dispatch::TimerState& each : Dispatch::runningTimers()) {
    running.push_back({{"queue", each.queue},
                       {"utility", each.quality == QOS_CLASS_UTILITY},
                       {"interval", each.interval},
                       {"leeway", each.leeway}});
  }
  return running;
}

}  // namespace

Json currentState() {
  Json state = {{"item", item()},
                {"menu", menu()},
                {"timers", timers()},
                {"activities", heldActivities()},
                {"activations", activations()},
                {"pooled", pooledObjects()},
                {"living", livingObjects()},
                {"census", census()},
                {"blocks", livingBlocks()},
                {"waits", MainRunLoop::waits()},
                {"notificationObservers", notificationObservers()},
                {"loopSources", MainRunLoop::sourceCount()}};
  withMachine([&](Machine& machine) {
    state["opened"] = machine.openedAddresses;
    state["connections"] = machine.openConnections;
    state["hostRights"] = machine.hostRights;
    state["calls"] = {{"interfaceNames", machine.calls.interfaceNames},
                      {"interfaceTables", machine.calls.interfaceTables},
                      {"controllerOpenings", machine.calls.controllerOpenings},
                      {"controllerCalls", machine.calls.controllerCalls},
                      {"hostStatistics", machine.calls.hostStatistics},
                      {"powerReadings", machine.calls.powerReadings}};
    state["loginStatus"] = machine.loginStatus;
  });
  return state;
}

}  // namespace standin
