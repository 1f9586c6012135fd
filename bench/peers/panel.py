#!/usr/bin/python3
"""A panel without a window: watches for status items as a desktop's panel does, and
fetches the picture and the tool tip of each at every change. It owns
org.kde.StatusNotifierWatcher on the session bus and ends with its standard input. With --count
it writes a line at each fetch."""
import sys

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
XML = """<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<signal name="StatusNotifierItemRegistered"><arg type="s"/></signal>
<signal name="StatusNotifierHostRegistered"/>
</interface></node>"""

# Panels (waybar among them) wait this long for further signals of the same change.
DEBOUNCE_MS = 10

items = []
pending = set()
fetches = 0


def changed(connection, sender):
    if sender not in pending:
        pending.add(sender)
        GLib.timeout_add(DEBOUNCE_MS, lambda: fetch(connection, sender))


def fetch(connection, sender):
    """As panels do: everything at once, whatever the change was."""
    pending.discard(sender)

    def done(source, result):
        global fetches
        try:
            source.call_finish(result)
            fetches += 1
            if "--count" in sys.argv:
                print(fetches, flush=True)
        except GLib.Error as error:
            print(error.message, file=sys.stderr)

    connection.call(sender, "/StatusNotifierItem", "org.freedesktop.DBus.Properties", "GetAll",
                    GLib.Variant("(s)", (ITEM,)), None, Gio.DBusCallFlags.NONE, 5000, None, done)
    return GLib.SOURCE_REMOVE


def called(connection, sender, path, interface, method, parameters, invocation):
    invocation.return_value(None)
    if method == "RegisterStatusNotifierItem" and sender not in items:
        items.append(sender)
        for signal in ("NewIcon", "NewToolTip"):
            connection.signal_subscribe(sender, ITEM, signal, None, None,
                                        Gio.DBusSignalFlags.NONE,
                                        lambda c, s, *rest: changed(c, s))
        fetch(connection, sender)
        print("registered", flush=True)


def read(connection, sender, path, interface, name):
    return {"RegisteredStatusNotifierItems": GLib.Variant("as", items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", True),
            "ProtocolVersion": GLib.Variant("i", 0)}[name]


def main():
    loop = GLib.MainLoop()
    bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
    bus.register_object("/StatusNotifierWatcher",
                        Gio.DBusNodeInfo.new_for_xml(XML).interfaces[0], called, read, None)
    Gio.bus_own_name_on_connection(bus, WATCHER, Gio.BusNameOwnerFlags.NONE, None, None)
    GLib.io_add_watch(sys.stdin.fileno(), GLib.PRIORITY_DEFAULT,
                      GLib.IOCondition.HUP | GLib.IOCondition.IN, lambda *_: loop.quit())
    loop.run()
    print(f"fetched {fetches} times", flush=True)


main()
