#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""One agent in a session: real agents on a message bus of the test's own, no display.

    /usr/bin/python3 single_agent_test.py VANTORA [-v]
"""

import os
import shutil
import signal
import time

import stage
from stage import until


class SingleAgentTest(stage.StageTest):
    def start_second(self):
        """A start that is not the first: its status and what it said."""
        second = self.start_agent()
        second.process.wait(stage.TIMEOUT)
        return second.process.returncode, second.said()

    def test_a_second_start_asks_the_first_and_ends(self):
        self.start_bus()
        first = self.start_agent().wait_until_owner()
        self.assertEqual(
            self.start_second(),
            (0, ["vantora: já está em execução nesta sessão e acabou de iniciar; abra-o de novo "
                 "para ver as configurações"]))
        self.assertIsNone(first.process.poll())
        self.assertEqual(self.owner(), first.pid)
        self.assertEqual(first.end(), 0)
        self.assertIsNone(self.owner())

    def test_a_later_start_opens_the_window_with_its_token(self):
        # A window's program that only notes the token, beside the agent as it looks for it.
        noted = os.path.join(self.folder, "token")
        agent = shutil.copy(self.program, self.folder)
        window = os.path.join(self.folder, "vantora-settings")
        with open(window, "w", encoding="utf-8") as script:
            script.write(f'#!/bin/sh\nprintf %s "$XDG_ACTIVATION_TOKEN" > {noted}.new\n'
                         f"mv {noted}.new {noted}\ncat > {noted}.input\n")
        os.chmod(window, 0o755)
        self.start_bus()
        before = time.monotonic()
        first = stage.Agent(self, agent).wait_until_owner()
        self.environment["XDG_ACTIVATION_TOKEN"] = "token-of-the-launcher"

        def start_again():
            status, said = self.start_second()
            self.assertEqual(status, 0)
            return "passado adiante" in said[0]
        until("the request's answer", start_again)
        until("the window's program", lambda: os.path.exists(noted))
        self.assertGreaterEqual(time.monotonic() - before, 3.0)
        with open(noted, encoding="utf-8") as token:
            self.assertEqual(token.read(), "token-of-the-launcher")
        self.assertIsNone(first.process.poll())

    def test_an_agent_that_was_killed_blocks_nothing(self):
        self.start_bus()
        self.start_agent().wait_until_owner().kill()
        self.start_agent().wait_until_owner()

    def test_an_agent_that_hangs_is_not_waited_for_long(self):
        self.start_bus()
        first = self.start_agent().wait_until_owner()
        first.process.send_signal(signal.SIGSTOP)
        self.assertEqual(
            self.start_second(),
            (1, ["vantora: já está em execução nesta sessão, mas não responde"]))

    def test_starts_without_a_bus(self):
        agent = self.start_agent()
        self.assertIn("D-Bus", until("a line", agent.said)[0])
        self.assertIsNone(agent.process.poll())
        self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    stage.main()
