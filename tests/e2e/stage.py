# SPDX-License-Identifier: MIT
"""What the end-to-end tests of the agent share: a home, buses, quota tools and agents of a
test's own, all of which end with it. Conditions are waited for, with a limit.

Packages: dbus-daemon, python3-dbus; python3-dbusmock for logind.
"""

import glob
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile
import unittest
import uuid

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "../support"))
from session.servers import is_running, start_bus, start_display, until

NAME = "local.vantora.Vantora"
MANAGER = "org.freedesktop.login1.Manager"
TIMEOUT = 30  # seconds: allows for a loaded machine
SANITIZER_REPORT = re.compile(r"(ERROR|WARNING): \w+Sanitizer|runtime error:")
SKIPPED = 77  # the exit status of a test that was skipped
TOOL = os.path.join(os.path.dirname(os.path.abspath(__file__)), "quota_tool.py")


def switches(pid):
    """How often the threads of a process went to sleep so far. ThreadSanitizer has a thread of
    its own that never rests: it keeps the program's name, while ours have names."""
    total, main_name = 0, None
    for thread in sorted(os.listdir(f"/proc/{pid}/task"), key=int):
        with open(f"/proc/{pid}/task/{thread}/status", encoding="utf-8") as status:
            fields = dict(line.split(":", 1) for line in status)
        main_name = main_name or fields["Name"]
        if int(thread) == pid or fields["Name"] != main_name:
            total += int(fields["voluntary_ctxt_switches"])
    return total


def processor_seconds(pid):
    """The processor time that a process has taken so far."""
    with open(f"/proc/{pid}/stat", encoding="utf-8", errors="replace") as stat:
        fields = stat.read().rsplit(")", 1)[1].split()
    return (int(fields[11]) + int(fields[12])) / os.sysconf("SC_CLK_TCK")


def has_battery():
    """Whether the machine has a place for a battery of its own."""
    for kind in glob.glob("/sys/class/power_supply/*/type"):
        scope = os.path.join(os.path.dirname(kind), "scope")
        if _text(kind) == "Battery" and _text(scope) != "Device":
            return True
    return False


def _text(path):
    try:
        with open(path, encoding="utf-8") as file:
            return file.read().strip()
    except OSError:
        return ""


def module(top, bottom="none", width=60):
    return {"id": str(uuid.uuid4()).upper(), "enabled": True, "top": top, "bottom": bottom,
            "widthMode": "fixed", "width": width, "fontTop": 9, "fontBottom": 9,
            "alignment": "center"}


def configuration(*modules, **changes):
    """A document that shows the given pairs of metrics once a second."""
    document = {"schemaVersion": 1, "intervalSeconds": 1,
                "modules": [module(*metrics) for metrics in modules],
                "gap": 4, "horizontalPadding": 3, "verticalPadding": 0, "lineGap": 0,
                "paused": False}
    document.update(changes)
    return document


CLAUDE = {"enabled": True, "intervalMinutes": 3, "showUsed": True, "oneDecimal": False}
CODEX = dict(CLAUDE, showResetDate=False)
QUOTAS = (("claudeWeeklyPercent", "claudeSessionPercent"),
          ("codexWeeklyPercent", "codexWeeklyReset"))


class Agent:
    """A running agent, spoken to on the session bus as a panel speaks to it."""

    def __init__(self, stage, *command):
        self.stage = stage
        self.log = tempfile.NamedTemporaryFile(dir=stage.folder, prefix="agent-", delete=False)
        stage.addCleanup(self.assert_no_sanitizer_report)  # runs after the agent's end
        # A session of its own, by which all that it starts can be found.
        self.process = stage.start(command, stderr=self.log, start_new_session=True)
        self.pid = self.process.pid

    def said(self):
        with open(self.log.name, encoding="utf-8") as log:
            return log.read().splitlines()

    def wait_until_owner(self):
        """Until it has its name, which is when it can be spoken to."""
        def is_owner():
            assert self.process.poll() is None, f"the agent ended: {self.said()}"
            return self.stage.owner() == self.pid
        until("the agent's name", is_owner)
        until("the agent's menu", self.menu)  # it comes after the name
        return self

    def reading(self, name):
        """What the item says of the metric whose name begins so: "7%" of "CPU · uso"."""
        for part in re.split(r"; |\. |\n", self.text()):
            if part.startswith(name) and ": " in part:
                return part.split(": ", 1)[1]
        return None

    def assert_no_sanitizer_report(self):
        report = [line for line in self.said() if SANITIZER_REPORT.search(line)]
        if report:
            raise AssertionError("\n".join(self.said()))

    def end(self):
        """Asks it to end; the status that it ended with."""
        self.process.terminate()
        return self.process.wait(TIMEOUT)

    def kill(self):
        self.process.kill()
        self.process.wait()

    def _call(self, path, interface, method, *arguments):
        with self.stage.session() as bus:
            return bus.call_blocking(NAME, path, interface, method, None, arguments, timeout=10)

    def _property(self, name):
        return self._call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                          "org.kde.StatusNotifierItem", name)

    def text(self):
        """The text for assistive tools: all that the item shows."""
        return str(self._property("ToolTip")[2])

    def picture(self):
        """The largest picture: its width, its height and how many of its pixels are drawn."""
        pictures = self._property("IconPixmap")
        width, height, pixels = max(pictures, key=lambda each: each[0])
        return int(width), int(height), sum(1 for alpha in bytes(pixels)[0::4] if alpha)

    def click(self):
        self._call("/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate", 0, 0)

    def menu(self):
        """The entries of the menu: their numbers by their labels."""
        import dbus
        _, root = self._call("/MenuBar", "com.canonical.dbusmenu", "GetLayout", 0, -1,
                             dbus.Array([], signature="s"))
        return {str(entry[1]["label"]): int(entry[0]) for entry in root[2]}

    def choose(self, label):
        import dbus
        self._call("/MenuBar", "com.canonical.dbusmenu", "Event",
                   dbus.Int32(self.menu()[label]), "clicked", dbus.Int32(0, variant_level=1),
                   dbus.UInt32(0))

    def children(self):
        """The processes that the agent started and that still run."""
        found = []
        for thread in os.listdir(f"/proc/{self.pid}/task"):
            with open(f"/proc/{self.pid}/task/{thread}/children", encoding="utf-8") as children:
                found += [int(pid) for pid in children.read().split()]
        return [pid for pid in found if is_running(pid)]

    def guards(self):
        """The processes that see to the end of the children, with the agent or without it."""
        found = []
        # They have left the agent's session, but are forks of it with its environment.
        home = f"HOME={self.stage.home}".encode()
        for pid in filter(str.isdigit, os.listdir("/proc")):
            try:
                with open(f"/proc/{pid}/comm", encoding="utf-8") as name:
                    is_guard = name.read() == "vantora-guard\n"
                if is_guard and is_running(pid):
                    with open(f"/proc/{pid}/environ", "rb") as environment:
                        if home in environment.read().split(b"\0"):
                            found.append(int(pid))
            except OSError:  # it has just ended
                pass
        return found


class Session:
    """A connection to a message bus that is closed after its use."""

    def __init__(self, address):
        import dbus
        self.connection = dbus.bus.BusConnection(address)

    def __enter__(self):
        return self.connection

    def __exit__(self, *_):
        self.connection.close()


class QuotaTool:
    """A command-line assistant with a given behaviour, where the agent looks for it."""

    def __init__(self, stage, kind, manner):
        self.notes = os.path.join(stage.folder, kind)
        os.makedirs(self.notes)
        path = os.path.join(stage.home, ".local/bin", kind)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as script:
            script.write(f'#!/bin/sh\nexec /usr/bin/python3 -S "{TOOL}" {kind} {manner} '
                         f'"{self.notes}"\n')
        os.chmod(path, 0o755)
        if kind == "codex":
            stage.write("Vantora/preferences.json", {"Vantora.CodexExecutablePath": path})

    def _numbers(self, name):
        try:
            with open(os.path.join(self.notes, name), encoding="utf-8") as notes:
                return [int(line) for line in notes.read().splitlines()]
        except FileNotFoundError:
            return []

    def started(self):
        """The processes that were started so far."""
        return self._numbers("started")

    def grandchildren(self):
        return self._numbers("grandchildren")

    def wait_for_start(self, count=1):
        until(f"start number {count} of the quota tool", lambda: len(self.started()) >= count)
        return self.started()[count - 1]

    def environment(self):
        with open(os.path.join(self.notes, "environment"), encoding="utf-8") as notes:
            return json.load(notes)

    def allow_answers(self):
        with open(os.path.join(self.notes, "answer"), "w", encoding="utf-8"):
            pass


class StageTest(unittest.TestCase):
    """A test with a home of its own and nothing of the machine's around it: no buses, no
    display, no panel."""

    program = ""  # the agent's

    def setUp(self):
        self.folder = tempfile.mkdtemp(prefix="vantora-e2e-")
        self.addCleanup(shutil.rmtree, self.folder, ignore_errors=True)
        self.home = os.path.join(self.folder, "home")
        self.runtime = os.path.join(self.folder, "run")
        os.mkdir(self.home)
        os.mkdir(self.runtime, 0o700)
        self.environment = {
            "PATH": os.environ["PATH"],
            "LANG": "C.UTF-8",
            "HOME": self.home,
            "XDG_RUNTIME_DIR": self.runtime,
            "XDG_CONFIG_HOME": os.path.join(self.home, "config"),
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=" + os.path.join(self.folder, "nowhere"),
        }
        for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]

    def start(self, command, **options):
        """Starts a process that ends with the test."""
        options.setdefault("stdout", subprocess.DEVNULL)
        child = subprocess.Popen(command, env=self.environment, **options)
        self.addCleanup(self.end, child)
        return child

    @staticmethod
    def end(child):
        if child.poll() is None:
            child.send_signal(signal.SIGCONT)
            child.terminate()
            try:
                child.wait(10)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
        for stream in (child.stdout, child.stderr):
            if stream:
                stream.close()

    def has_window_program(self):
        """Whether the settings window was built, which needs its toolkit."""
        return os.path.exists(os.path.join(os.path.dirname(self.program), "vantora-settings"))

    def start_display(self, *size):
        """An X server of the test's own; the size of its screen as in "800x600"."""
        _, self.environment["DISPLAY"] = start_display(self.start, *size)

    def windows(self, title):
        """Whether the display shows a window with that title."""
        answer = subprocess.run(["xdotool", "search", "--onlyvisible", "--name", title],
                                env=self.environment, capture_output=True, text=True, check=False)
        return answer.stdout.split()

    def start_agent(self):
        return Agent(self, self.program)

    def _start_daemon(self, name):
        return start_bus(self.start, os.path.join(self.runtime, name))

    def start_bus(self):
        """The session's message bus, always at the same address."""
        daemon, self.environment["DBUS_SESSION_BUS_ADDRESS"] = self._start_daemon("bus")
        return daemon

    def stop_bus(self, daemon):
        daemon.kill()
        daemon.wait()
        address = self.environment["DBUS_SESSION_BUS_ADDRESS"]
        if os.path.exists(address.split("=", 1)[1]):
            os.unlink(address.split("=", 1)[1])

    def session(self):
        return Session(self.environment["DBUS_SESSION_BUS_ADDRESS"])

    def owner(self):
        """The process that has the agent's name; nothing when none has."""
        import dbus
        with self.session() as bus:
            try:
                return int(bus.call_blocking(
                    "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
                    "GetConnectionUnixProcessID", "s", (NAME,), timeout=10))
            except dbus.DBusException:
                return None

    def start_logind(self):
        """A logind of the test's own, on a system bus of the test's own."""
        _, address = self._start_daemon("system-bus")
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = address
        # The mock asks the system's bus by itself, and finds it in the environment.
        self.start([sys.executable, "-m", "dbusmock", "--system", "--template", "logind"],
                   stderr=subprocess.DEVNULL)
        until("logind", lambda: self.logind("ListInhibitors") is not None)

    def logind(self, method, *arguments, interface=MANAGER, signature=None):
        with Session(self.environment["DBUS_SYSTEM_BUS_ADDRESS"]) as bus:
            return bus.call_blocking("org.freedesktop.login1", "/org/freedesktop/login1",
                                     interface, method, signature, arguments, timeout=10)

    def tell_sleep(self, begins):
        self.logind("EmitSignal", MANAGER, "PrepareForSleep", "b", [begins],
                    interface="org.freedesktop.DBus.Mock", signature="sssav")

    def holds_sleep(self):
        """Whether the agent keeps logind from putting the machine to sleep at once."""
        return any((lock[0], lock[1], lock[3]) == ("sleep", "Vantora", "delay")
                   for lock in self.logind("ListInhibitors"))

    def write(self, name, document):
        """A JSON document in the folder of configurations."""
        path = os.path.join(self.environment["XDG_CONFIG_HOME"], name)
        os.makedirs(os.path.dirname(path), exist_ok=True)
        with open(path, "w", encoding="utf-8") as file:
            json.dump(document, file)

    def configure(self, *modules, **changes):
        self.write("Vantora/configuration.json", configuration(*modules, **changes))

    def saved(self):
        path = os.path.join(self.environment["XDG_CONFIG_HOME"], "Vantora/configuration.json")
        with open(path, encoding="utf-8") as file:
            return json.load(file)

    def quota_tool(self, kind, manner="patient"):
        return QuotaTool(self, kind, manner)

    def files(self):
        """Every file and folder in the home."""
        return sorted(os.path.relpath(os.path.join(folder, name), self.home)
                      for folder, folders, names in os.walk(self.home)
                      for name in folders + names)


def run_tests():
    """Runs the tests of the program that was started. Ends with 77 where one was skipped, so
    that CTest sees it."""
    program = unittest.main(exit=False)
    if not program.result.wasSuccessful():
        sys.exit(1)
    sys.exit(SKIPPED if program.result.skipped else 0)


def main():
    StageTest.program = os.path.abspath(sys.argv.pop(1))
    run_tests()
