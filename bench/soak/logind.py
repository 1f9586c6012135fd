#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The part of logind that programs need which prepare for a suspension: it gives locks and
says that the machine will sleep ("s" on the standard input) or has woken ("w").
https://www.freedesktop.org/software/systemd/man/org.freedesktop.login1.html"""
import os
import sys

from gi.repository import Gio, GLib

NAME = "org.freedesktop.login1"
PATH = "/org/freedesktop/login1"
XML = """<node><interface name="org.freedesktop.login1.Manager">
<method name="Inhibit"><arg type="s" direction="in"/><arg type="s" direction="in"/>
<arg type="s" direction="in"/><arg type="s" direction="in"/><arg type="h" direction="out"/></method>
<signal name="PrepareForSleep"><arg type="b"/></signal></interface></node>"""


def called(connection, sender, path, interface, method, parameters, invocation):
    reader, writer = os.pipe()
    os.close(reader)
    descriptors = Gio.UnixFDList.new()
    index = descriptors.append(writer)
    os.close(writer)
    invocation.return_value_with_unix_fd_list(GLib.Variant("(h)", (index,)), descriptors)


def read_command(connection, loop):
    letter = os.read(0, 1)
    if not letter:
        loop.quit()
        return GLib.SOURCE_REMOVE
    connection.emit_signal(None, PATH, NAME + ".Manager", "PrepareForSleep",
                           GLib.Variant("(b)", (letter == b"s",)))
    return GLib.SOURCE_CONTINUE


def main():
    loop = GLib.MainLoop()
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    bus.register_object(PATH, Gio.DBusNodeInfo.new_for_xml(XML).interfaces[0], called, None, None)
    Gio.bus_own_name_on_connection(bus, NAME, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT,
                      GLib.IOCondition.IN | GLib.IOCondition.HUP,
                      lambda *_: read_command(bus, loop))
    loop.run()


main()
