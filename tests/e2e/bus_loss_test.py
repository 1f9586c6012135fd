#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The agent without a session bus, without a panel, and with buses and panels that go away
and come back: it says so in one line, waits without spinning, and recovers.

    /usr/bin/python3 bus_loss_test.py VANTORA [-v]
"""

import os
import sys
import time

import stage
from stage import until

SHOWN = "vantora: O item de status está no painel."
NO_HOST = "vantora: Nenhum painel mostra itens de status; o item aparece quando houver um."
NO_BUS = "vantora: Sem conexão com o D-Bus da sessão; o item de status aparece quando houver uma."
WATCHER = os.path.join(os.path.dirname(os.path.abspath(__file__)), "watcher.py")


class BusLossTest(stage.StageTest):
    def setUp(self):
        super().setUp()
        self.configure(("cpuUsage", "download"), intervalSeconds=2)
        self.registrations = os.path.join(self.folder, "registrations")

    def start_panel(self):
        return self.start([sys.executable, WATCHER, self.registrations])

    def registered(self):
        try:
            with open(self.registrations, encoding="utf-8") as log:
                return log.read().splitlines()
        except FileNotFoundError:
            return []

    def wait_until_shown(self, agent, said):
        until("the item in the panel", lambda: len(agent.said()) >= len(said))
        self.assertEqual(agent.said(), said)

    def assert_waits_quietly(self, agent):
        # A reading every two seconds and an attempt to connect now and then: few wake-ups, and
        # little processor time.
        before = stage.switches(agent.pid), stage.processor_seconds(agent.pid), time.monotonic()
        time.sleep(3)
        now = stage.switches(agent.pid), stage.processor_seconds(agent.pid), time.monotonic()
        switches, seconds, span = (end - begin for end, begin in zip(now, before))
        self.assertLess(switches / span, 8, "switches a second")
        self.assertLess(seconds / span, 0.2, "share of a processor")
        self.assertIsNone(agent.process.poll())

    def test_waits_for_a_bus_and_for_a_panel(self):
        self.environment["DBUS_SESSION_BUS_ADDRESS"] = "unix:path=" + self.runtime + "/bus"
        agent = self.start_agent()
        until("the line", agent.said)
        self.assert_waits_quietly(agent)
        self.assertEqual(agent.said(), [NO_BUS])
        self.start_bus()
        agent.wait_until_owner()
        until("the next line", lambda: len(agent.said()) > 1)
        self.assert_waits_quietly(agent)
        self.assertEqual(agent.said(), [NO_BUS, NO_HOST])
        self.start_panel()
        self.wait_until_shown(agent, [NO_BUS, NO_HOST, SHOWN])
        self.assertEqual(agent.end(), 0)

    def test_finds_a_bus_that_went_away_and_came_back(self):
        bus = self.start_bus()
        self.start_panel()
        agent = self.start_agent().wait_until_owner()
        self.wait_until_shown(agent, [SHOWN])
        self.stop_bus(bus)
        until("the line", lambda: len(agent.said()) > 1)
        self.assert_waits_quietly(agent)
        self.assertEqual(agent.said(), [SHOWN, NO_BUS])
        self.start_bus()
        self.start_panel()
        agent.wait_until_owner()
        self.wait_until_shown(agent, [SHOWN, NO_BUS, SHOWN])
        # Once in each panel, under the name of its process.
        self.assertEqual(len(self.registered()), 2)
        self.assertEqual(len(set(self.registered())), 1)
        self.assertEqual(agent.end(), 0)

    def test_joins_a_panel_that_is_started_anew(self):
        self.start_bus()
        panel = self.start_panel()
        agent = self.start_agent().wait_until_owner()
        self.wait_until_shown(agent, [SHOWN])
        for count in (2, 3):
            panel.kill()
            panel.wait()
            panel = self.start_panel()
            until("the registration", lambda wanted=count: len(self.registered()) == wanted)
        # A panel that is back at once is not worth a message.
        self.assertEqual(agent.said(), [SHOWN])
        self.assertEqual(agent.end(), 0)

    def test_finds_a_logind_whose_bus_comes_later(self):
        self.start_bus()
        self.environment["DBUS_SYSTEM_BUS_ADDRESS"] = "unix:path=" + self.runtime + "/system-bus"
        agent = self.start_agent().wait_until_owner()
        self.assert_waits_quietly(agent)
        self.start_logind()
        until("the lock", self.holds_sleep)
        self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    stage.main()
