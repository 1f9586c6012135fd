#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""run_soak.py MINUTES PROGRAMS CSV [SEED]: the soak of scripts/soak, which says what it is."""
import collections
import csv
import ctypes
import os
import pathlib
import random
import shutil
import signal
import socket
import subprocess
import sys
import tempfile
import time

import figures
import verdict
from world import PANELS, World

SAMPLE_EVERY = 5  # seconds
REST = 12  # the seconds that a rest takes
HERE = pathlib.Path(__file__).resolve().parent
PR_SET_CHILD_SUBREAPER = 36  # prctl(2)


class Soak:
    def __init__(self, minutes, programs, seed, folder):
        self.length = minutes * 60
        self.chance = random.Random(seed)
        self.seed = seed
        self.folder = pathlib.Path(folder)
        self.programs = pathlib.Path(programs)
        self.world = World(folder, self.chance)
        self.samples = []
        self.faults = []
        self.at_rest = []  # what the descriptors were, at each rest
        self.due = {}  # what happens when, in seconds of the run
        self.socket = socket.socket(socket.AF_INET, socket.SOCK_DGRAM)
        self.socket.setblocking(False)

    # The agent and its home.

    def lay_out(self):
        home, programs = self.folder / "home", self.folder / "bin"
        (home / ".local/bin").mkdir(parents=True)
        programs.mkdir()
        shutil.copy(self.programs / "vantora", programs / "vantora")
        for name, source in {programs / "vantora-settings": "window.py",
                             home / ".local/bin/codex": "assistant.py",
                             home / ".local/bin/claude": "assistant.py"}.items():
            shutil.copy(HERE / source, name)
            name.chmod(0o755)
        (programs / "xdg-open").write_text("#!/bin/sh\nexit 0\n")
        (programs / "xdg-open").chmod(0o755)
        self.world.environment.update(
            HOME=str(home), XDG_CONFIG_HOME=str(home / "config"),
            XDG_RUNTIME_DIR=str(self.folder), PATH=f"{programs}:{os.environ['PATH']}")

    def start_agent(self):
        mark = f"SOAK_FOLDER={self.folder}"
        environment = {**self.world.environment, "SOAK_FOLDER": str(self.folder),
                       "SOAK_SEED": str(self.seed)}
        with open(self.folder / "agent.log", "wb") as log:
            self.agent = self.world.start("agent", [self.folder / "bin/vantora"],
                                          env=environment, stderr=log)
        self.family = figures.Family(self.agent.pid, mark, self.world.own)

    # What happens, and how long until the next time.

    def every(self, what, low, high):
        """Whether `what` is due; its next time is drawn."""
        now = time.monotonic()
        if now < self.due.setdefault(what, now + self.chance.uniform(low, high)):
            return False
        self.due[what] = now + self.chance.uniform(low, high)
        return True

    def later(self, what, seconds):
        self.due[what] = time.monotonic() + seconds

    def is_due(self, what):
        if time.monotonic() < self.due.get(what, float("inf")):
            return False
        del self.due[what]
        return True

    def stir(self):
        """Whatever happens to the agent from outside; a few times a second."""
        world, chance = self.world, self.chance
        if self.every("open", 1, 2) and not self.window_is_open():
            world.open_settings(self.agent.pid)
        if "panel" in world.processes:
            if self.every("panel leaves", 30, 90):
                world.stop("panel")
                # The agent looks for a tray once no panel has come for five seconds.
                if chance.random() < 0.5:
                    world.start_tray()
                self.later("panel returns", chance.uniform(0, 20))
        elif self.is_due("panel returns") or "panel returns" not in self.due:
            world.stop("tray")
            world.start_panel(chance.choice(PANELS))
            self.due.pop("panel leaves", None)
        if self.every("menu", 15, 30):
            world.choose("Pausar")
            self.later("resume", chance.uniform(1, 3))
        if self.is_due("resume"):
            world.choose("Retomar")
        if self.every("second start", 40, 80):
            if not world.start_again(self.folder / "bin/vantora"):
                self.faults.append("a second start did not end well")
        if self.every("suspension", 40, 80):
            world.sleep(True)
            self.later("wake", chance.uniform(0.2, 3))
        if self.is_due("wake"):
            world.sleep(False)
        if self.every("bus", 60, 180):
            world.restart_bus()
            self.later("panel returns", 1)
        if self.every("kill", 5, 15):
            self.kill_assistant()
        if self.has_network:
            world.make_traffic(self.socket)
            if self.every("network", 5, 15):
                world.flap()
                self.later("network returns", chance.uniform(0.5, 4))
            if self.is_due("network returns"):
                world.mend_network()
        if self.has_machine and self.every("machine", 1, 1):
            world.change_machine()

    def window_is_open(self):
        return any(name == "vantora-settings" for _, _, name in self.family.look()[0])

    def kill_assistant(self):
        living = [pid for pid, _, name in self.family.look()[0] if name in ("codex", "claude")]
        if living:
            self.world.record("assistant killed")
            try:
                os.kill(self.chance.choice(living), signal.SIGKILL)
            except ProcessLookupError:
                pass

    # What is looked at.

    def sample(self, phase):
        living, zombies = self.family.look()
        if zombies:  # perhaps just about to be reaped
            time.sleep(0.1)
            zombies = [pid for pid in self.family.look()[1] if pid in zombies]
        quota = [(age, name) for _, age, name in living if name in ("codex", "claude")]
        row = {"second": round(time.monotonic() - self.begun, 1), "phase": phase,
               **figures.of(self.agent.pid), "children": len(living), "zombies": len(zombies),
               "oldest_assistant": round(max((age for age, _ in quota), default=0), 1)}
        self.samples.append(row)
        self.table.writerow(row)
        return row

    def rest(self):
        """A moment that is always the same: everything there, everything shown, the window
        closed, paused, and time for children to end. What the agent holds then beyond the
        last rest is a leak."""
        world = self.world
        seen = len(self.window_events())
        (self.folder / "rest").touch()
        if self.has_network:
            world.mend_network()
        if self.has_machine:
            world.machine.fill()
        world.sleep(False)
        world.stop("tray")
        world.stop("panel")
        world.start_panel("waybar")
        for what in ("panel leaves", "panel returns", "network returns", "resume", "wake"):
            self.due.pop(what, None)
        deadline = time.monotonic() + 30
        # A window that hangs is ended by the agent.
        while time.monotonic() < deadline:
            if not self.window_is_open():
                if "rest" in self.window_events()[seen:]:
                    break
                world.open_settings(self.agent.pid)
            time.sleep(1)
        while time.monotonic() < deadline and not world.choose("Pausar"):
            time.sleep(0.5)
        time.sleep(5)
        for _ in range(3):
            self.sample("rest")
            time.sleep(0.5)
        self.at_rest.append(figures.descriptors(self.agent.pid))
        (self.folder / "rest").unlink()
        world.choose("Retomar")

    def window_events(self):
        file = self.folder / "events"
        lines = file.read_text().splitlines() if file.exists() else []
        return [line.partition(" ")[2] for line in lines if line.startswith("window ")]

    def start_world(self):
        """Everything around the agent; prints what this system does not allow."""
        self.lay_out()
        world = self.world
        is_apart = os.environ.get("SOAK_ISOLATED") == "1"
        lacking = [world.start_network(), world.start_machine()] if is_apart else \
            ["no namespaces of one's own: neither network nor sensors change"]
        self.has_network = is_apart and lacking[0] is None
        self.has_machine = is_apart and lacking[1] is None
        for lack in [*lacking, world.start_screen()]:
            if lack:
                print(lack, flush=True)
        world.start_bus()
        world.start_panel("waybar")

    def run(self, table):
        self.table = csv.DictWriter(table, ["second", "phase", *figures.COLUMNS, "children",
                                            "zombies", "oldest_assistant"])
        self.table.writeheader()
        self.start_world()
        self.start_agent()
        self.begun = time.monotonic()
        end = self.begun + self.length
        try:
            while (now := time.monotonic()) < end and self.agent.poll() is None:
                self.stir()
                if self.every("sample", SAMPLE_EVERY, SAMPLE_EVERY):
                    self.sample("stir")
                # The last one is at the end.
                if now - self.begun > (len(self.at_rest) + 1) * verdict.span(self.length) - REST:
                    self.rest()
                table.flush()
                time.sleep(0.25)
            self.finish()
        except OSError:  # /proc of an agent that has ended
            if self.agent.poll() is None:
                raise
            self.faults.append(f"the agent ended with status {self.agent.returncode}")

    def finish(self):
        """Asks the agent to end, which by then should not have ended by itself."""
        if self.agent.poll() is not None:
            self.faults.append(f"the agent ended with status {self.agent.returncode}")
            return
        self.agent.send_signal(signal.SIGTERM)
        try:
            status = self.agent.wait(10)
            if status != 0:
                self.faults.append(f"the agent ended with status {status} after SIGTERM")
        except subprocess.TimeoutExpired:
            self.faults.append("the agent did not end within 10 s of SIGTERM")
        left, _ = self.family.look()
        if left:
            names = ", ".join(name for _, _, name in left)
            self.faults.append(f"it left processes behind: {names}")
        for pid, _, _ in left:
            os.kill(pid, signal.SIGKILL)


def count(folder):
    """The events that children recorded, by their kind."""
    totals = {}
    for line in (folder / "events").read_text().splitlines():
        totals[line] = totals.get(line, 0) + 1
    return totals


def show_descriptors(first, last):
    """What was open at one rest and not at the other; sockets and pipes by their number."""
    def kinds(names):
        return collections.Counter(name.partition("[")[0] for name in names)
    for what, number in (kinds(last) - kinds(first)).items():
        print(f"opened since the first rest: {number} {what}")
    for what, number in (kinds(first) - kinds(last)).items():
        print(f"closed since the first rest: {number} {what}")


def main():
    minutes, programs, name = float(sys.argv[1]), sys.argv[2], sys.argv[3]
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else random.SystemRandom().randrange(10**6)
    # So that what was started is ended.
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("asked to end"))
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    folder = tempfile.mkdtemp(prefix="vantora-soak-")
    soak = Soak(minutes, programs, seed, folder)
    print(f"seed {seed}, {minutes:g} minutes, at work in {folder}", flush=True)
    try:
        with open(name, "w", newline="") as table:
            soak.run(table)
        print("\n".join(verdict.table(soak.samples, soak.length)))
        for what, number in sorted(count(soak.folder).items()):
            print(f"{what:32}{number:>8}")
        # A sanitizer keeps what is freed.
        has_own_heap = b"__asan_init" not in (soak.folder / "bin/vantora").read_bytes()
        if not has_own_heap:
            print("built with AddressSanitizer: memory is not judged")
        faults = soak.faults + verdict.judge(soak.samples, soak.length, memory=has_own_heap)
        if faults and soak.at_rest:
            show_descriptors(soak.at_rest[0], soak.at_rest[-1])
        print(f"every sample: {os.path.abspath(name)}")
    finally:
        soak.world.end()
    if faults:
        print("\n".join(f"NOT FLAT: {fault}" for fault in faults))
        sys.exit(1)
    shutil.rmtree(folder, ignore_errors=True)
    print("flat")


if __name__ == "__main__":
    main()
