// SPDX-License-Identifier: MIT
#include <set>
#include <string>

#include "dispatch/main_run_loop.hpp"
#include "dispatch/queues.hpp"
#include "frameworks/Foundation/process_info.hpp"
#include "machine/machine.hpp"
#include "objc/blocks.hpp"
#include "objc/fault.hpp"
#include "objc/objects.hpp"

namespace standin {

// Declared in headers for Objective-C++ alone.
int notificationObservers();
int statusItems();
bool isMenuOpen();

namespace {

// What the system keeps as long as the process lives, and the application's delegate, which
// main keeps because the application does not.
const std::set<std::string> lasting = {"NSApplication",
                                       "NSBundle",
                                       "NSColor",
                                       "NSEvent",
                                       "NSFileManager",
                                       "NSDistributedNotificationCenter",
                                       "NSNotificationCenter",
                                       "NSProcessInfo",
                                       "NSStatusBar",
                                       "NSWorkspace",
                                       "SMAppService",
                                       "StandInMainLoop",
                                       "VantoraDelegate"};

void requireNone(long count, const char* what) {
  if (count != 0) {
    fault("at the end there is still %ld: %s", count, what);
  }
}

}  // namespace

void requireBalance() {
  requireNone(statusItems(), "status items in the bar");
  requireNone(notificationObservers(), "observers of notifications");
  requireNone(MainRunLoop::observerCount(), "observers of the run loop");
  requireNone(MainRunLoop::sourceCount(), "sources of the run loop");
  requireNone(Dispatch::livingSources(), "sources of Dispatch");
  requireNone(Dispatch::livingQueues(), "queues of Dispatch");
  requireNone(static_cast<long>(heldActivities().size()), "activities that keep App Nap away");
  withMachine([](Machine& machine) {
    requireNone(machine.openConnections, "connections to the controller");
    requireNone(machine.serviceReferences, "references to a service");
    requireNone(machine.hostRights, "rights to the host's port");
  });
  // An end in the middle of an open menu leaves the frames below with what they hold.
  if (isMenuOpen()) {
    return;
  }
  for (const auto& [name, count] : census()) {
    if (!lasting.contains(name)) {
      requireNone(count, ("objects of class " + name).c_str());
    }
  }
  requireNone(livingBlocks(), "blocks on the heap");
}

}  // namespace standin
