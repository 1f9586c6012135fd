#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""measure.py [--moving] [--together] SECONDS VANTORA_FOLDER [NAME...]: what Vantora and its peers
cost on the same laptop, as ratios to Vantora. scripts/bench-peers says more.

CPU is the process's CPU clock (all threads, in nanoseconds), switches are the voluntary context
switches of all threads, memory is smaps_rollup after the measured span (Anonymous: the private
pages that the program wrote), and system calls come from a span of their own under strace, which
would disturb the others."""
import argparse
import contextlib
import os
import pathlib
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

import figures
import laptop
import programs
from session.servers import start_bus, start_display

WARM_UP = 8  # seconds
MAX_TRACED = 20  # seconds
# The panel that is played: it keeps the whole picture, so that every text is drawn.
PANEL = "waybar"
HERE = pathlib.Path(__file__).resolve().parent


class Lines:
    """Reads what a program writes, as a bar does, and counts the lines that differ from the one
    before."""

    def __init__(self, stream):
        self.changes = 0
        self.last = b""
        self.thread = threading.Thread(target=self._read, args=[stream], daemon=True)
        self.thread.start()

    def _read(self, stream):
        for line in stream:
            self.changes += line != self.last
            self.last = line


def started(stack, command, **options):
    """A process that ends with the stack."""
    process = subprocess.Popen(command, **{"stderr": subprocess.DEVNULL, **options})

    def end():
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()

    stack.callback(end)
    return process


def start_session(stack, folder):
    """A display, a bus and a panel of this run alone: the environment, and the panel's words."""
    def start(command, **options):
        return started(stack, command, **options)

    _, display = start_display(start)
    _, address = start_bus(start, folder / "bus")
    environment = {**os.environ, "DISPLAY": display, "DBUS_SESSION_BUS_ADDRESS": address,
                   "XDG_CONFIG_HOME": str(folder), "LC_ALL": "C.UTF-8"}
    link = folder / PANEL
    link.symlink_to("/usr/bin/python3")
    panel = start([link, HERE / "panel.py", "--count"], env=environment, stdin=subprocess.PIPE,
                  stdout=subprocess.PIPE)
    time.sleep(1)
    return environment, Lines(panel.stdout)


def system_calls(pid, seconds):
    with tempfile.NamedTemporaryFile("r") as summary:
        tracer = subprocess.Popen(["strace", "-f", "-c", "-o", summary.name, "-p", str(pid)],
                                  stderr=subprocess.DEVNULL)
        time.sleep(seconds)
        tracer.send_signal(signal.SIGINT)
        tracer.wait()
        return figures.calls_in(summary.read()) / seconds


class Program:
    def __init__(self, stack, title, command, environment, fetches):
        self.title = title
        self.process = started(stack, command, env=environment, stdout=subprocess.PIPE)
        # What the panel fetched is what the status item told.
        self.output = fetches if title == "Vantora" else Lines(self.process.stdout)
        if title == "Vantora":
            Lines(self.process.stdout)

    def begin(self):
        self.span = figures.Span(self.process.pid)
        self.changes = self.output.changes

    def row(self, seconds):
        if self.process.poll() is not None:
            sys.exit(f"{self.title} ended with status {self.process.returncode}")
        row = self.span.row()
        self.changes = self.output.changes - self.changes
        print(f"{self.title}: {self.changes} changes seen in {seconds} s; "
              f"last: {self.output.last.decode(errors='replace').strip() or '(drawn)'}",
              file=sys.stderr)
        return {**row, **figures.memory(self.process.pid)}


def measure(rows, environment, fetches, seconds):
    """All of `rows` at once."""
    with contextlib.ExitStack() as stack:
        running = [Program(stack, title, command, environment, fetches)
                   for title, command in rows.items()]
        time.sleep(WARM_UP)
        for program in running:
            program.begin()
        time.sleep(seconds)
        results = {program.title: program.row(seconds) for program in running}
        if shutil.which("strace"):
            for program in running:
                results[program.title]["calls/s"] = system_calls(program.process.pid,
                                                                 min(MAX_TRACED, seconds))
        return results


def chosen(rows, wanted):
    """Those that are wanted and can be started; Vantora always, as the ratios are to it."""
    found = {}
    for title, command in rows.items():
        if wanted and title != "Vantora" and not any(title.startswith(name) for name in wanted):
            continue
        if shutil.which(command[0]) is None:
            print(f"{command[0]} is not installed: without the row \"{title}\"", file=sys.stderr)
            continue
        found[title] = command
    return found


def measure_all(options, mode):
    with tempfile.TemporaryDirectory() as name, contextlib.ExitStack() as stack:
        folder = pathlib.Path(name)
        laptop.build(folder)
        stack.enter_context(laptop.feeding(mode, folder))
        programs.write(folder)
        environment, fetches = start_session(stack, folder)
        rows = chosen(programs.commands(folder, options.programs), options.names)
        groups = [rows] if options.together else [{title: rows[title]} for title in rows]
        results = {}
        for group in groups:
            results.update(measure(group, environment, fetches, options.seconds))
        return results


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--moving", action="store_true")
    parser.add_argument("--together", action="store_true")
    parser.add_argument("seconds", type=int)
    parser.add_argument("programs", type=pathlib.Path)
    parser.add_argument("names", nargs="*")
    options = parser.parse_args()
    mode = "moving" if options.moving else "still"
    load = os.getloadavg()[0]
    try:
        laptop.go_apart()
        results = measure_all(options, mode)
    except laptop.Unavailable as problem:
        sys.exit(f"bench-peers cannot give all programs the same readings: {problem}.")
    print(figures.table(results))
    print(f"{'a text changes each second' if options.moving else 'nothing changes'}, "
          f"{'all side by side' if options.together else 'each alone'}; {options.seconds} s after "
          f"{WARM_UP} s of warm-up, at 1 s; {os.uname().machine}, Linux {os.uname().release}, "
          f"{os.cpu_count()} cores, load {load:.1f} before, {time.strftime('%Y-%m-%d')}")


main()
