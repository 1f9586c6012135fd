#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""run.py MINUTES PROGRAMS CSV [SEED]: the trial of scripts/chaos, which describes it."""
import collections
import csv
import ctypes
import json
import os
import pathlib
import random
import shutil
import signal
import subprocess
import sys
import tempfile
import time

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parents[1] / "soak"))
import disturbances
import figures
from run_soak import PR_SET_CHILD_SUBREAPER, Soak
from world import PANELS

QUIT_LIMIT = 2  # seconds from SIGTERM to the agent's end
ANSWER_LIMIT = 3  # seconds, which World.call() waits for
READING_LIMIT = 10  # seconds: two passes, on a machine that has other work
RECOVERY = 8  # seconds after the bus or the agent were silenced: it reconnects with a back-off
WARM_UP = 20  # seconds
# KiB above the first calm. The heap and the store of glyphs grow in the first minutes.
MAX_GROWTH = {"private_kib": 512, "rss_kib": 1536}
METRICS = [("batteryPercent", "batteryTime"), ("batteryTemperature", "cpuTemperature"),
           ("upload", "download"), ("cpuUsage", "adapterWatts"), ("fan1RPM", "fan2RPM"),
           ("codexWeeklyPercent", "codexWeeklyReset"),
           ("claudeWeeklyPercent", "claudeSessionPercent")]


def everything():
    """A configuration that demands every reading and both quota tools."""
    modules = [{"id": f"00000000-0000-4000-8000-{index:012d}", "enabled": True, "top": top,
                "bottom": bottom, "widthMode": "fixed", "width": 40, "fontTop": 9,
                "fontBottom": 9, "alignment": "center"}
               for index, (top, bottom) in enumerate(METRICS)]
    quota = {"enabled": True, "intervalMinutes": 1, "showUsed": False, "oneDecimal": False}
    return {"schemaVersion": 1, "intervalSeconds": 1, "modules": modules, "gap": 4,
            "horizontalPadding": 3, "verticalPadding": 0, "lineGap": 0, "paused": False,
            "codexSettings": {**quota, "showResetDate": False}, "claudeSettings": quota}


class Chaos(Soak):
    panels = PANELS

    def __init__(self, minutes, programs, seed, folder):
        super().__init__(minutes, programs, seed, folder)
        self.is_isolated = os.environ.get("SOAK_ISOLATED") == "1"
        self.swap = disturbances.Swap()
        self.active = {}  # a disturbance that goes on, and when it ends
        self.times = collections.Counter()
        self.deaf_until = 0
        self.table = None

    def start_world(self):
        lack = self.swap.take()
        super().start_world()
        lacking = [lack] if lack else []
        self.possible = []
        for kind in disturbances.ALL:
            each = kind(self)
            lack = each.lack()
            if lack is None:
                self.possible.append(each)
            else:
                lacking.append(f"never: {each.name}: {lack}")
        for each in lacking:
            print(each, flush=True)

    def fault(self, text):
        if text not in self.faults:
            self.faults.append(text)
            print(f"{time.monotonic() - self.begun:6.1f} s: {text}", flush=True)

    # The random part.

    def may_begin(self, chosen):
        names = {each.name for each in self.active}
        return chosen.name not in names and not any(
            chosen.name in group and names & group for group in disturbances.GROUPS)

    def begin(self, chosen):
        if not self.may_begin(chosen) or chosen.begin() is False:
            return False
        self.times[chosen.name] += 1
        self.world.record(f"chaos {chosen.name}")
        self.active[chosen] = time.monotonic() + self.chance.uniform(*chosen.seconds)
        return True

    def end(self, disturbance):
        del self.active[disturbance]
        disturbance.end()
        if disturbance.is_deafening:
            self.deaf_until = time.monotonic() + RECOVERY

    def is_deaf(self):
        """Whether the agent cannot be asked now, or only just could not."""
        return time.monotonic() < self.deaf_until or \
            any(each.is_deafening for each in self.active)

    def stir(self):
        now = time.monotonic()
        for each in [each for each, until in self.active.items() if now >= until]:
            self.end(each)
        if self.every("disturbance", 1, 3):
            self.begin(self.chance.choice(self.possible))
        if self.has_network:
            self.world.make_traffic(self.socket)
        if self.is_deaf():
            return
        if self.every("open", 1, 3) and not self.window_is_open():
            self.world.open_settings(self.agent.pid)
        if self.every("question", 1, 2):
            self.ask()

    def ask(self):
        """Whatever goes on around it, the agent answers on its bus."""
        if not self.world.menu() and self.agent.poll() is None:
            during = ", ".join(sorted(each.name for each in self.active)) or "nothing"
            self.fault(f"no answer within {ANSWER_LIMIT} s during: {during}")

    def calm(self):
        """Everything as at the start, and the figures of the agent then."""
        for each in list(self.active):
            self.end(each)
        time.sleep(RECOVERY)
        self.rest()
        figures_at_rest = self.samples[-1]
        # Pages that were written, wherever they are now.
        figures_at_rest["private_kib"] = figures_at_rest["anonymous_kib"] + \
            figures.swapped(self.agent.pid)
        figures_at_rest["names"] = figures.thread_names(self.agent.pid)
        return figures_at_rest

    def dock_once(self):
        """The display's thread starts with the first docking, and stays."""
        self.world.stop("panel")
        self.world.start_tray()
        time.sleep(disturbances.TrayDisplaySilent.settling)

    def run_random(self):
        deadline = time.monotonic() + WARM_UP
        while time.monotonic() < deadline and self.agent.poll() is None:
            if self.every("open", 1, 3) and not self.window_is_open():
                self.world.open_settings(self.agent.pid)
            time.sleep(0.25)
        self.dock_once()
        before = self.calm()
        end = time.monotonic() + self.length
        while time.monotonic() < end and self.agent.poll() is None:
            self.stir()
            if self.every("sample", 5, 5):
                self.sample("chaos")
            time.sleep(0.25)
        if self.agent.poll() is None:
            self.compare(before, self.calm())

    def compare(self, before, after):
        for column in ("rss_kib", "private_kib", "descriptors", "threads", "children"):
            print(f"{column:16}{before[column]:8} before {after[column]:8} after")
        for column, limit in MAX_GROWTH.items():
            if after[column] > before[column] + limit and self.judges_memory:
                self.fault(f"{column} went from {before[column]} to {after[column]}")
        for column in ("descriptors", "threads"):
            if after[column] != before[column]:
                self.fault(f"{column} were {before[column]} before and {after[column]} after "
                           f"(threads {before['names']} and {after['names']})")
        if after["children"] or after["zombies"]:
            self.fault(f"{after['children']} children and {after['zombies']} zombies at rest")

    # Each disturbance by itself, and the agent asked to end in the midst of it.

    def leave(self, what, statuses=(0,)):
        """Asks the agent to end; a fault unless it does, in time, with one of the statuses and
        with all its children."""
        begun = time.monotonic()
        self.agent.send_signal(signal.SIGCONT)
        self.agent.send_signal(signal.SIGTERM)
        try:
            status = self.agent.wait(QUIT_LIMIT)
            print(f"  {what:32}{time.monotonic() - begun:6.2f} s", flush=True)
            if status not in statuses:
                self.fault(f"{what}: SIGTERM ended it with status {status}")
        except subprocess.TimeoutExpired:
            print(f"  {what:32}     no end within {QUIT_LIMIT} s", flush=True)
            self.fault(f"{what}: no end within {QUIT_LIMIT} s of SIGTERM")
            self.agent.kill()
            self.agent.wait()
        self.expect_no_family(what)

    def expect_no_family(self, what):
        deadline = time.monotonic() + 3
        while (left := self.family.look()[0]) and time.monotonic() < deadline:
            time.sleep(0.1)
        if left:
            names = ", ".join(sorted(name for _, _, name in left))
            self.fault(f"{what}: left behind: {names}")
        for pid, _, _ in left:
            os.kill(pid, signal.SIGKILL)

    def start_fresh(self, wait=True):
        folder = self.folder / "home/config/Vantora"
        folder.mkdir(exist_ok=True)
        (folder / "configuration.json").write_text(json.dumps(everything()), encoding="utf-8")
        self.start_agent()
        deadline = time.monotonic() + 20
        while wait and not self.world.menu():
            if time.monotonic() > deadline or self.agent.poll() is not None:
                self.fault("a new agent did not answer within 20 s of its start")
                return
            time.sleep(0.1)
        deadline = time.monotonic() + 5
        while wait and not self.window_is_open() and time.monotonic() < deadline:
            self.world.open_settings(self.agent.pid)
            time.sleep(0.2)

    def run_endings(self):
        print(f"Seconds from SIGTERM to the end ({QUIT_LIMIT} at most)")
        for each in [None, *self.possible]:
            self.start_fresh()
            if each is not None and not self.begin(each):
                print(f"  {each.name:32}   could not begin")
            time.sleep(each.settling if each else 1)
            self.leave(each.name if each else "nothing")
            if each in self.active:
                self.end(each)
        for each in self.possible:
            if each.can_be_first:
                self.end_what_began_before_it(each)
        self.start_fresh()
        self.agent.kill()
        self.agent.wait()
        self.expect_no_family("agent killed")
        self.start_fresh()
        self.leave("after a killed one")

    def end_what_began_before_it(self, disturbance):
        is_driver = isinstance(disturbance, disturbances.DriverHung)
        if not self.begin(disturbance):
            return
        self.start_fresh(wait=is_driver)
        time.sleep(2)
        # A driver that hangs costs its own readings only.
        if is_driver and not self.reads_processor():
            self.fault(f"{disturbance.name} from the start: no reading of the processor "
                       f"within {READING_LIMIT} s")
        # Before it has a loop, the signal itself ends it.
        self.leave(f"{disturbance.name} from the start", (0, -signal.SIGTERM))
        self.end(disturbance)

    def reads_processor(self):
        deadline = time.monotonic() + READING_LIMIT
        while time.monotonic() < deadline:
            answer = self.world.item_text(self.agent.pid)
            if answer is not None and "CPU · uso total: —" not in answer:
                return True
            time.sleep(0.5)
        return False

    def run(self, table):
        self.table = csv.DictWriter(table, ["second", "phase", *figures.COLUMNS, "children",
                                            "zombies", "oldest_assistant"])
        self.table.writeheader()
        self.start_world()
        self.start_agent()
        program = (self.folder / "bin/vantora").read_bytes()
        self.judges_memory = b"__asan_init" not in program and b"__tsan_init" not in program
        self.begun = time.monotonic()
        try:
            self.run_random()
            if self.agent.poll() is None:
                self.leave("after the chaos")
            else:
                self.died()
        except OSError:  # /proc of an agent that is no more
            if self.agent.poll() is None:
                raise
            self.died()
        for each in list(self.active):
            self.end(each)
        self.run_endings()

    def died(self):
        during = ", ".join(sorted(each.name for each in self.active)) or "nothing"
        self.fault(f"the agent ended with status {self.agent.returncode} during: {during}")
        print((self.folder / "agent.log").read_text(errors="replace")[-2000:])


def main():
    minutes, programs, name = float(sys.argv[1]), sys.argv[2], sys.argv[3]
    seed = int(sys.argv[4]) if len(sys.argv) > 4 else random.SystemRandom().randrange(10**6)
    signal.signal(signal.SIGTERM, lambda *_: sys.exit("asked to end"))
    ctypes.CDLL(None).prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0)
    folder = tempfile.mkdtemp(prefix="vantora-chaos-")
    chaos = Chaos(minutes, programs, seed, folder)
    print(f"seed {seed}, {minutes:g} minutes, at work in {folder}", flush=True)
    try:
        with open(name, "w", newline="", encoding="utf-8") as table:
            chaos.run(table)
    finally:
        for each in list(chaos.active):
            chaos.end(each)
        chaos.world.end()
        chaos.swap.give_back()
        if chaos.is_isolated:
            subprocess.run(["umount", "--lazy", chaos.folder / "home/config"], check=False,
                           capture_output=True)
    print("Begun: " + ", ".join(f"{number} {what}" for what, number in chaos.times.most_common()))
    if chaos.faults:
        print("\n".join(f"FOUND: {fault}" for fault in chaos.faults))
        sys.exit(1)
    shutil.rmtree(folder, ignore_errors=True)
    print("nothing found")


if __name__ == "__main__":
    main()
