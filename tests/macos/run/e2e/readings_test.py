# SPDX-License-Identifier: MIT
"""Readings that change, fail and come back."""

import re
import unittest

from stage import Test, at_rest, sampling
from picture_test import settled


def reads(text):
    return lambda state: text in state["item"]["label"]


class APowerSourceChange(Test):
    def test_shows_at_once(self):
        agent = self.agent()
        settled(agent)
        agent.ask("set charge 40")
        self.assertTrue(agent.ask("power"), "no source listens")
        agent.until("the battery's new charge", reads("40%"))
        agent.ask("set state AC Power")
        agent.ask("set watts 96")
        agent.ask("power")
        agent.until("the adapter", reads("AC"))


class Sleep(Test):
    def test_stops_everything_and_wake_begins_anew(self):
        agent = self.agent()
        settled(agent)
        self.assertEqual(agent.state()["connections"], 1)
        agent.ask("sleep")
        agent.until("rest", at_rest)
        agent.ask("labels")
        agent.ask("set busy 60")
        agent.ask("set charge 44")
        agent.ask("wake")
        state = agent.until("the next reading", reads("CPU · uso total: 60%"))
        # The first reading after wake waits for a second one: no percentage over the sleep.
        said = [re.search("CPU · uso total: ([^;]*)", label)[1] for label in agent.ask("labels")]
        self.assertEqual(list(dict.fromkeys(said)), ["—", "60%"])
        # The battery is read though its last reading is younger than 30 s.
        self.assertIn("44%", state["item"]["label"])
        self.assertEqual(len(sampling(state)), 1)
        self.assertEqual(len(state["activities"]), 1)
        agent.ask("quit")
        self.ended(agent)


class TheController(Test):
    def test_that_is_missing_shows_dashes(self):
        agent = self.agent()
        settled(agent)
        agent.ask("sleep")
        agent.until("rest", at_rest)
        for mode in ("missing", "refusing"):
            agent.ask(f"set controller {mode}")
            agent.ask("wake")
            agent.until("dashes", reads("CPU · maior temperatura (SMC experimental): —"))
            agent.ask("sleep")
            agent.until("rest", at_rest)
        agent.ask("set controller working")
        agent.ask("wake")
        agent.until("the reading", reads("CPU · maior temperatura (SMC experimental): 47°C"))
        agent.ask("quit")
        self.ended(agent)

    def test_that_fails_is_let_go_of_and_comes_back(self):
        agent = self.agent()
        settled(agent)
        agent.ask("set controller failing")
        agent.until("dashes", reads("CPU · maior temperatura (SMC experimental): —"))
        agent.until("an end of the connection", lambda state: state["connections"] == 0)
        agent.ask("set controller working")
        agent.ask("sleep")
        agent.ask("wake")
        agent.until("the reading", reads("CPU · maior temperatura (SMC experimental): 47°C"))

    def test_that_says_nonsense_shows_nothing_of_it(self):
        agent = self.agent()
        settled(agent)
        agent.ask("set controller garbage")
        agent.ask("sleep")
        agent.ask("wake")
        agent.until("dashes", reads("CPU · maior temperatura (SMC experimental): —"))


class TheInterfaceTable(Test):
    def test_that_is_short_or_huge_or_refused_shows_dashes_until_it_is_whole(self):
        agent = self.agent()
        settled(agent)
        for fault in ("short", "refused", "huge"):
            agent.ask(f"set table {fault}")
            agent.until("dashes", reads("Rede · download: —"))
            agent.ask("set table whole")
            agent.ask("sleep")
            agent.ask("wake")
            agent.until("the rate", reads("0,64M"))

    def test_that_is_long_or_changes_is_read_as_it_is(self):
        agent = self.agent()
        before = settled(agent)
        agent.ask("set interfaces 300")
        passes = before["calls"]["interfaceTables"] + 4
        state = agent.until("more passes", lambda state: state["calls"]["interfaceTables"] >= passes)
        self.assertIn("0,64M", state["item"]["label"])
        # Each name once, not once a pass.
        self.assertLess(state["calls"]["interfaceNames"], 3 + 303 + 5)
        agent.ask("labels")
        agent.ask("set interfaces renamed")
        said = []

        def other_rate(state):
            said.extend(agent.ask("labels"))
            return len(said) > 1 and "0,64M" in said[-1]
        agent.until("the other interface's rate", other_rate)
        # Its first sample waits for a second one.
        self.assertIn("Rede · download: —", said[0])


class TheTickCounters(Test):
    def test_that_fail_show_a_dash(self):
        agent = self.agent()
        settled(agent)
        agent.ask("set hostStatus 5")
        agent.until("a dash", reads("CPU · uso total: —"))
        agent.ask("set hostStatus 0")
        agent.until("the reading", reads("CPU · uso total: 23%"))
        agent.ask("quit")
        self.ended(agent)


if __name__ == "__main__":
    unittest.main()
