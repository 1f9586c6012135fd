# SPDX-License-Identifier: MIT
"""A message bus and an X server of one's own, and what to wait for."""
import os
import subprocess
import time


def until(what, look, limit=30, interval=0.02):
    """The first true answer of `look()`, which may raise until then. AssertionError after
    `limit` seconds."""
    deadline = time.monotonic() + limit
    while True:
        try:
            found = problem = look()
        except Exception as error:  # not ready
            found, problem = None, error
        if found:
            return found
        if time.monotonic() > deadline:
            raise AssertionError(f"never came: {what} ({problem!r})")
        time.sleep(interval)


def is_running(pid):
    """Whether the process exists and is no zombie."""
    try:
        with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as stat:
            return stat.read().rsplit(")", 1)[1].split()[0] not in "ZX"
    except OSError:
        return False


def start_bus(start, path):
    """A dbus-daemon that listens at `path`: the process and its address. `start` is called as
    subprocess.Popen is; RuntimeError when the daemon does not start."""
    address = f"unix:path={path}"
    daemon = start(["dbus-daemon", "--session", "--nofork", "--print-address",
                    "--address=" + address],
                   stdout=subprocess.PIPE, stderr=subprocess.DEVNULL)
    if not daemon.stdout.readline():
        raise RuntimeError("the message bus did not start")
    return daemon, address


def start_display(start, size="1000x800", name=None):
    """An Xvfb: the process and its name, a free one unless `name` is given."""
    read, write = os.pipe()
    # -noreset: otherwise the server resets, and refuses connections for a moment, whenever
    # its last client leaves.
    server = start(["Xvfb", *([name] if name else []), "-displayfd", str(write), "-noreset",
                    "-nolisten", "tcp", "-screen", "0", size + "x24"],
                   pass_fds=[write], stderr=subprocess.DEVNULL)
    os.close(write)
    with os.fdopen(read) as answer:
        number = answer.readline().strip()
    if not number:
        raise RuntimeError("the X server did not start")
    return server, ":" + number
