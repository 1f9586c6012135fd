#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""portal.py COLOR-SCHEME CONTRAST: a desktop portal on the session bus that answers for a
desktop with these wishes (org.freedesktop.portal.Settings): 0 none, 1 dark, 2 light; 0 usual,
1 high contrast. Prints a line once it can be asked. Packages: python3-dbus, python3-gi.
"""
import sys

import dbus
import dbus.mainloop.glib
import dbus.service
from gi.repository import GLib

INTERFACE = "org.freedesktop.portal.Settings"


class Portal(dbus.service.Object):
    def __init__(self, bus, scheme, contrast):
        super().__init__(bus, "/org/freedesktop/portal/desktop")
        self.settings = {
            "org.freedesktop.appearance": {"color-scheme": dbus.UInt32(scheme),
                                           "contrast": dbus.UInt32(contrast)},
            "org.gnome.desktop.a11y.interface": {"high-contrast": dbus.Boolean(contrast == 1)}}

    def value(self, namespace, key):
        try:
            return self.settings[namespace][key]
        except KeyError:
            raise dbus.DBusException("no such setting",
                                     name="org.freedesktop.portal.Error.NotFound") from None

    @dbus.service.method(INTERFACE, in_signature="ss", out_signature="v")
    def Read(self, namespace, key):
        value = self.value(namespace, key)  # a variant in a variant, as the portal does it
        return type(value)(value, variant_level=1)

    @dbus.service.method(INTERFACE, in_signature="ss", out_signature="v")
    def ReadOne(self, namespace, key):
        return self.value(namespace, key)

    @dbus.service.method(INTERFACE, in_signature="as", out_signature="a{sa{sv}}")
    def ReadAll(self, namespaces):
        del namespaces
        return dbus.Dictionary({name: dbus.Dictionary(values, signature="sv")
                                for name, values in self.settings.items()}, signature="sa{sv}")

    @dbus.service.signal(INTERFACE, signature="ssv")
    def SettingChanged(self, namespace, key, value):
        pass


def main():
    dbus.mainloop.glib.DBusGMainLoop(set_as_default=True)
    bus = dbus.SessionBus()
    portal = Portal(bus, int(sys.argv[1]), int(sys.argv[2]))
    name = dbus.service.BusName("org.freedesktop.portal.Desktop", bus)
    print("ready", flush=True)
    GLib.MainLoop().run()
    del portal, name


main()
