#!/usr/bin/python3 -S
# SPDX-License-Identifier: MIT
"""The settings window itself in the place of the bundle's: starts the program that
$VANTORA_WINDOW names, without a display, passes on what it and the agent say, and notes both in
$HOME/window.log."""

import json
import os
import subprocess
import sys
import threading

NOTES = os.path.join(os.environ["HOME"], "window.log")


def note(**what):
    with open(NOTES, "a", encoding="utf-8") as log:
        log.write(json.dumps(what) + "\n")


window = subprocess.Popen([os.environ["VANTORA_WINDOW"], *sys.argv[1:]],
                          env=dict(os.environ, QT_QPA_PLATFORM="offscreen"),
                          stdin=subprocess.PIPE, stdout=subprocess.PIPE)
note(pid=os.getpid(), window=window.pid)


def pass_on_what_it_says():
    for line in window.stdout:
        note(said=json.loads(line))
        sys.stdout.buffer.write(line)
        sys.stdout.buffer.flush()
    os._exit(window.wait())


threading.Thread(target=pass_on_what_it_says, daemon=True).start()
for line in sys.stdin.buffer:
    note(got=json.loads(line))
    window.stdin.write(line)
    window.stdin.flush()
window.stdin.close()
threading.Event().wait()
