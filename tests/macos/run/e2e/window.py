#!/usr/bin/python3 -S
# SPDX-License-Identifier: MIT
"""A settings window without a window: answers the agent as docs/settings-protocol.md asks,
notes in $HOME/window.log what it is told, and says what is written to $HOME/window.in."""

import json
import os
import sys
import threading

HOME = os.environ["HOME"]


def note(**what):
    with open(os.path.join(HOME, "window.log"), "a", encoding="utf-8") as log:
        log.write(json.dumps(what) + "\n")


def say(message):
    sys.stdout.write(json.dumps(message) + "\n")
    sys.stdout.flush()


def listen():
    place = os.path.join(HOME, "window.in")
    if not os.path.exists(place):
        os.mkfifo(place)
    while True:
        with open(place, encoding="utf-8") as pipe:
            for line in pipe:
                say(json.loads(line))


note(pid=os.getpid())
threading.Thread(target=listen, daemon=True).start()
say({"type": "ready", "protocol": 1, "scale": 2})
for line in sys.stdin:
    message = json.loads(line)
    note(got=message)
    if message["type"] == "state":
        say({"type": "seen", "sequence": message["sequence"]})
os._exit(0)
