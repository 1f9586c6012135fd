#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Listens to what programs report to assistive tools, as a screen reader does, until it is
ended. Prints a line once it listens."""
import gi

gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib  # noqa: E402

EVENTS = ("focus:", "window:", "object:state-changed", "object:children-changed",
          "object:property-change", "object:text-changed", "object:visible-data-changed",
          "object:selection-changed", "object:bounds-changed")


def look(event):
    """Asks for the name of what has changed, as a reader does before it speaks."""
    try:
        event.source.get_name()
    except GLib.Error:
        pass  # The program has ended meanwhile.


listener = Atspi.EventListener.new(look)
for event in EVENTS:
    listener.register(event)
print("listening", flush=True)
Atspi.event_main()
