# SPDX-License-Identifier: MIT
"""The settings window itself, as Linux has it, as a child of the agent."""

import os
import unittest

from stage import HERE, Test, is_running, terminate, until
from picture_test import settled

WINDOW = "Helpers/vantora-settings.app/Contents/MacOS/vantora-settings"


@unittest.skipUnless("VANTORA_WINDOW" in os.environ, "there is no settings window here")
class TheWindowItself(Test):
    def setUp(self):
        super().setUp()
        os.remove(os.path.join(self.bundle, WINDOW))
        self.put(os.path.join(HERE, "relay.py"), WINDOW)

    def ended(self, agent):
        # A signal may end what passes the words on before the window has seen their end.
        program = next(note["window"] for note in self.window_notes() if "window" in note)
        super().ended(agent)
        until("the window's own end", lambda: not is_running(program))

    def said(self, kind):
        return [note["said"] for note in self.window_notes()
                if note.get("said", {}).get("type") == kind]

    def open(self):
        agent = self.agent()
        settled(agent)
        self.open_window(agent)
        until("the window's first word", lambda: self.said("ready"))
        return agent

    def test_shows_what_the_agent_says_and_ends_with_it(self):
        agent = self.open()
        before = until("the window's sight of the first state", lambda: self.said("seen"))
        agent.ask("set busy 61")
        later = until("another picture", lambda: [
            message["sequence"] for message in self.window_states()
            if "picture" in message and message["sequence"] > before[-1]["sequence"]])
        until("the window's sight of it",
              lambda: self.said("seen")[-1]["sequence"] >= later[0])
        agent.ask("quit")
        self.ended(agent)

    def test_ends_with_an_agent_that_a_signal_ends(self):
        agent = self.open()
        terminate(agent)
        self.ended(agent)


if __name__ == "__main__":
    unittest.main()
