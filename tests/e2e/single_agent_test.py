#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""One agent in a session: real agents on a message bus of the test's own, no display.

    python3 single_agent_test.py VANTORA [-v]

Packages: dbus-daemon, dbus-bin.
"""

import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest

VANTORA = ""
NAME = "local.vantora.Vantora"
PATIENCE = 20  # seconds: for a loaded machine, never for the program


class SingleAgentTest(unittest.TestCase):
    def setUp(self):
        self.home = tempfile.mkdtemp(prefix="vantora-e2e-")
        self.addCleanup(shutil.rmtree, self.home, ignore_errors=True)
        self.environment = {
            "PATH": os.environ["PATH"],
            "HOME": self.home,
            "XDG_RUNTIME_DIR": self.home,
            "DBUS_SYSTEM_BUS_ADDRESS": "unix:path=/nowhere/at/all",
        }
        for name in ("ASAN_OPTIONS", "LSAN_OPTIONS", "TSAN_OPTIONS", "UBSAN_OPTIONS"):
            if name in os.environ:
                self.environment[name] = os.environ[name]

    def start_bus(self):
        bus = self.start(
            ["dbus-daemon", "--session", "--nofork", "--print-address"],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
        )
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = bus.stdout.readline().strip()

    def start(self, command, **options):
        child = subprocess.Popen(command, env=self.environment, text=True, **options)
        self.addCleanup(self.end, child)
        return child

    def start_agent(self):
        return self.start([VANTORA], stdout=subprocess.DEVNULL, stderr=subprocess.PIPE)

    @staticmethod
    def end(child):
        if child.poll() is None:
            child.send_signal(signal.SIGCONT)
            child.terminate()
            try:
                child.wait(PATIENCE)
            except subprocess.TimeoutExpired:
                child.kill()
                child.wait()
        for stream in (child.stdout, child.stderr):
            if stream:
                stream.close()

    def owner(self):
        """The process that has the agent's name; nothing when none has."""
        answer = subprocess.run(
            ["dbus-send", "--session", "--print-reply=literal", "--dest=org.freedesktop.DBus",
             "/org/freedesktop/DBus", "org.freedesktop.DBus.GetConnectionUnixProcessID",
             "string:" + NAME],
            env=self.environment, capture_output=True, text=True, check=False,
        )
        return int(answer.stdout.split()[-1]) if answer.returncode == 0 else None

    def wait_for_name(self, agent):
        deadline = time.monotonic() + PATIENCE
        while self.owner() != agent.pid:
            self.assertIsNone(agent.poll(), "the agent ended")
            self.assertLess(time.monotonic(), deadline, "the agent did not take the name")
            time.sleep(0.02)

    def test_a_second_start_asks_the_first_and_ends(self):
        self.start_bus()
        first = self.start_agent()
        self.wait_for_name(first)
        second = self.start_agent()
        _, said = second.communicate(timeout=PATIENCE)
        self.assertEqual(second.returncode, 0)
        self.assertEqual(
            said, "vantora: já está em execução nesta sessão; o pedido de abertura foi passado "
                  "adiante\n")
        self.assertIsNone(first.poll())
        self.assertEqual(self.owner(), first.pid)
        first.terminate()
        self.assertEqual(first.wait(PATIENCE), 0)
        self.assertIsNone(self.owner())

    def test_a_later_start_opens_the_window_with_its_token(self):
        # A window's program that only notes the token, beside the agent as it looks for it.
        noted = os.path.join(self.home, "token")
        agent = shutil.copy(VANTORA, self.home)
        window = os.path.join(self.home, "vantora-settings")
        with open(window, "w", encoding="utf-8") as script:
            script.write(f'#!/bin/sh\nprintf %s "$XDG_ACTIVATION_TOKEN" > {noted}.new\n'
                         f"mv {noted}.new {noted}\ncat > {noted}.input\n")
        os.chmod(window, 0o755)
        self.start_bus()
        before = time.monotonic()
        first = self.start([agent], stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        self.wait_for_name(first)
        self.environment["XDG_ACTIVATION_TOKEN"] = "token-of-the-launcher"
        while not os.path.exists(noted):
            self.assertLess(time.monotonic() - before, PATIENCE, "no window came")
            second = self.start_agent()
            second.communicate(timeout=PATIENCE)
            self.assertEqual(second.returncode, 0)
        self.assertGreaterEqual(time.monotonic() - before, 3.0)
        with open(noted, encoding="utf-8") as token:
            self.assertEqual(token.read(), "token-of-the-launcher")
        self.assertIsNone(first.poll())

    def test_an_agent_that_was_killed_blocks_nothing(self):
        self.start_bus()
        first = self.start_agent()
        self.wait_for_name(first)
        first.kill()
        first.wait()
        self.wait_for_name(self.start_agent())

    def test_an_agent_that_hangs_is_not_waited_for_long(self):
        self.start_bus()
        first = self.start_agent()
        self.wait_for_name(first)
        first.send_signal(signal.SIGSTOP)
        second = self.start_agent()
        _, said = second.communicate(timeout=PATIENCE)
        self.assertEqual(second.returncode, 1)
        self.assertEqual(said, "vantora: já está em execução nesta sessão, mas não responde\n")

    def test_starts_without_a_bus(self):
        agent = self.start_agent()
        self.assertIn("D-Bus", agent.stderr.readline())
        self.assertIsNone(agent.poll())
        agent.terminate()
        self.assertEqual(agent.wait(PATIENCE), 0)


if __name__ == "__main__":
    VANTORA = sys.argv.pop(1)
    unittest.main()
