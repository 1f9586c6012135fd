#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The agent and a display that accepts and never answers, or stops answering: the menu, the
readings and the end go on.

    /usr/bin/python3 silent_display_test.py VANTORA [-v]
"""

import os
import signal
import socket
import subprocess
import time

import stage
from stage import until

END_LIMIT = 2  # seconds that a person waits for "Sair"


class SilentDisplayTest(stage.StageTest):
    def setUp(self):
        super().setUp()
        self.configure(("cpuUsage", "download"))
        self.start_bus()

    def start_silent_display(self):
        """A socket where libxcb looks for a display; what connects to it is kept."""
        listener = socket.socket(socket.AF_UNIX)
        self.addCleanup(listener.close)
        for number in range(20000, 60000):
            try:
                listener.bind(f"\0/tmp/.X11-unix/X{number}")
            except OSError:
                continue
            listener.listen(16)
            self.environment["DISPLAY"] = f":{number}"
            return

    def has_display_thread(self, agent):
        def name(thread):
            with open(f"/proc/{agent.pid}/task/{thread}/comm", encoding="utf-8") as comm:
                return comm.read().strip()
        return "vantora.display" in map(name, os.listdir(f"/proc/{agent.pid}/task"))

    def assert_answers_and_ends(self, agent):
        before = time.monotonic()
        agent.choose("Pausar")
        until("the pause", lambda: "Retomar" in agent.menu())
        self.assertLess(time.monotonic() - before, END_LIMIT)
        before = time.monotonic()
        self.assertEqual(agent.end(), 0)
        self.assertLess(time.monotonic() - before, END_LIMIT)

    def test_a_display_that_never_answers_holds_nothing_up(self):
        self.start_silent_display()
        agent = self.start_agent().wait_until_owner()
        until("the display's thread", lambda: self.has_display_thread(agent))
        until("the line", agent.said)
        self.assertIn("Nenhum painel", agent.said()[0])
        self.assert_answers_and_ends(agent)

    def test_a_display_that_stops_answering_holds_nothing_up(self):
        read, write = os.pipe()
        server = self.start(
            ["Xvfb", "-displayfd", str(write), "-noreset", "-nolisten", "tcp", "-screen", "0",
             "640x480x24"], pass_fds=[write], stderr=subprocess.DEVNULL)
        os.close(write)
        with os.fdopen(read) as answer:
            self.environment["DISPLAY"] = ":" + answer.readline().strip()
        agent = self.start_agent().wait_until_owner()
        until("the display's thread", lambda: self.has_display_thread(agent))
        server.send_signal(signal.SIGSTOP)
        self.assert_answers_and_ends(agent)


if __name__ == "__main__":
    stage.main()
