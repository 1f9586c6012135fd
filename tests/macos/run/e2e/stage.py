# SPDX-License-Identifier: MIT
"""What the end-to-end tests of the macOS programs share: a home, a bundle and programs of a
test's own, all of which end with it. The programs run on the stand-ins; a test uses them by
the lines of control/. Conditions are waited for, with a limit."""

import json
import os
import shutil
import signal
import socket
import subprocess
import tempfile
import time
import unittest

BUILD = os.environ["VANTORA_BUILD"]
HERE = os.path.dirname(os.path.abspath(__file__))
PATIENCE = float(os.environ.get("VANTORA_PATIENCE", "60"))  # seconds: for a loaded machine


def until(what, look, patience=PATIENCE):
    """What `look` answers once that is true."""
    deadline = time.monotonic() + patience
    while True:
        found = look()
        if found:
            return found
        if time.monotonic() > deadline:
            raise AssertionError(f"never came: {what}")
        time.sleep(0.01)


class Program:
    """A program under control."""

    def __init__(self, executable, home, *arguments, environment=None):
        ours, theirs = socket.socketpair()
        self.pipe = ours.makefile("rwb")
        ours.close()
        profiles = os.environ.get("VANTORA_PROFILES", home)
        variables = dict(os.environ, HOME=home, STAND_IN_CONTROL=str(theirs.fileno()),
                         LLVM_PROFILE_FILE=os.path.join(profiles, "e2e-%p.profraw"),
                         **(environment or {}))
        self.log = tempfile.TemporaryFile()
        self.process = subprocess.Popen([executable, *arguments], env=variables,
                                        pass_fds=[theirs.fileno()], stdin=subprocess.DEVNULL,
                                        stdout=subprocess.PIPE, stderr=self.log)
        theirs.close()

    def ask(self, line):
        try:
            self.pipe.write(line.encode() + b"\n")
            self.pipe.flush()
            answer = self.pipe.readline()
        except OSError:
            answer = b""
        if not answer:
            raise AssertionError(f"the program has gone: {self.said()}")
        found = json.loads(answer)
        if isinstance(found, dict) and "error" in found:
            raise AssertionError(f"{line}: {found['error']}")
        return found

    def state(self):
        return self.ask("state")

    def until(self, what, look):
        """The state once `look` says yes to it."""
        return until(what, lambda: (lambda state: look(state) and state)(self.state()))

    def said(self):
        self.log.seek(0)
        return self.log.read().decode(errors="replace")

    def end(self):
        """Its status, once it has ended."""
        self.pipe.close()
        return self.process.wait(PATIENCE + 30)

    def kill(self):
        if self.process.poll() is None:
            self.process.kill()
        self.process.wait()
        self.process.stdout.close()


class Test(unittest.TestCase):
    def setUp(self):
        folder = tempfile.mkdtemp(prefix="vantora-macos-")
        self.addCleanup(shutil.rmtree, folder, ignore_errors=True)
        self.home = os.path.join(folder, "home")
        self.support = os.path.join(self.home, "Library", "Application Support", "Vantora")
        os.makedirs(self.support)
        self.bundle = os.path.join(folder, "Vantora.app", "Contents")
        self.put(os.path.join(BUILD, "src/app/macos/Vantora.app/Contents/MacOS/Vantora"),
                 "MacOS/Vantora")
        self.put(os.path.join(BUILD, "src/app/macos/vantora-print"), "MacOS/vantora-print")
        self.put(os.path.join(HERE, "window.py"),
                 "Helpers/vantora-settings.app/Contents/MacOS/vantora-settings")

    def put(self, source, place):
        target = os.path.join(self.bundle, place)
        os.makedirs(os.path.dirname(target), exist_ok=True)
        try:
            os.link(source, target)
        except OSError:
            shutil.copy2(source, target)

    def start(self, name, *arguments, environment=None):
        program = Program(os.path.join(self.bundle, "MacOS", name), self.home, *arguments,
                          environment=environment)
        self.addCleanup(program.kill)
        return program

    def agent(self, configuration=None, **options):
        """An agent whose first readings are there."""
        if configuration is not None:
            path = os.path.join(self.support, "configuration.json")
            with open(path, "w", encoding="utf-8") as file:
                json.dump(configuration, file)
        agent = self.start("Vantora", **options)
        agent.until("the first picture", lambda state: state["item"] and "image" in state["item"])
        return agent

    def ended(self, agent):
        """Asserts that the agent ends well, and has given everything back."""
        status = agent.end()
        self.assertEqual(status, 0, agent.said())
        self.assertNotIn("stand-in:", agent.said())
        self.assertFalse(self.window_is_running(), "the settings window is still there")

    # The settings window, as window.py plays it.

    def window_notes(self):
        try:
            with open(os.path.join(self.home, "window.log"), encoding="utf-8") as notes:
                return [json.loads(line) for line in notes if line.endswith("\n")]
        except FileNotFoundError:
            return []

    def window_states(self):
        """Everything that the open window was told, the latest last."""
        return [note["got"] for note in self.window_notes() if "got" in note]

    def window_shows(self):
        """Each member of the state with its latest value."""
        shown = {}
        for message in self.window_states():
            if message["type"] == "state":
                shown.update(message)
        return shown

    def window_is_running(self):
        return any(is_running(note["pid"]) for note in self.window_notes() if "pid" in note)

    def window_says(self, message):
        place = os.path.join(self.home, "window.in")
        until("the window's ear", lambda: os.path.exists(place))
        with open(place, "w", encoding="utf-8") as pipe:
            pipe.write(json.dumps(message) + "\n")

    def open_window(self, agent):
        agent.ask("left")
        agent.until("the window's state", lambda _: "configuration" in self.window_shows())


def is_running(process):
    try:
        with open(f"/proc/{process}/stat", encoding="utf-8") as stat:
            return stat.read().rsplit(")", 1)[1].split()[0] not in "ZX"
    except OSError:
        return False


def sampling(state):
    """The running timers of the sampling queue."""
    return [timer for timer in state["timers"] if timer["queue"] == "local.vantora.sampling"]


def at_rest(state):
    """Nothing samples, and nothing keeps App Nap away or the controller open."""
    return not sampling(state) and not state["activities"] and not state["connections"]


def terminate(program):
    program.process.send_signal(signal.SIGTERM)
