#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""watcher.py LOG: as much of a panel as takes status items.

Owns the watcher's name on the session bus and writes a line to LOG for each item that is
registered. Ends when it is asked to. Packages: python3-dbus, python3-gi.
"""

import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

WATCHER = "org.kde.StatusNotifierWatcher"
PROPERTIES = {"IsStatusNotifierHostRegistered": dbus.Boolean(True),
              "ProtocolVersion": dbus.Int32(0)}


class Watcher(dbus.service.Object):
    @dbus.service.method(WATCHER, in_signature="s", sender_keyword="sender")
    def RegisterStatusNotifierItem(self, service, sender):
        with open(sys.argv[1], "a", encoding="utf-8") as log:
            log.write(f"{sender if service.startswith('/') else service}\n")

    @dbus.service.method(dbus.PROPERTIES_IFACE, in_signature="ss", out_signature="v")
    def Get(self, _interface, name):
        return PROPERTIES[name]


dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
bus = dbus.SessionBus()
watcher = Watcher(bus, "/StatusNotifierWatcher")
name = dbus.service.BusName(WATCHER, bus)
GLib.MainLoop().run()
