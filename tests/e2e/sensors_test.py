#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The whole agent on a machine with sensor chips, a battery and fans, which are read on a
thread of their own: values change, chips come and go, the readings pause, sleep and end.

    /usr/bin/python3 sensors_test.py VANTORA [-v]

Needs a mount namespace; skipped (status 77) where the system refuses one.
"""

import os
import sys

import stage
from session.machine import Machine, isolated
from stage import until

ISOLATED = "VANTORA_E2E_ISOLATED"
CPU = "CPU · maior temperatura"
FAN = "Ventoinha 1 · RPM"


class SensorsTest(stage.StageTest):
    def setUp(self):
        super().setUp()
        self.machine = Machine(os.path.join(self.folder, "class"))
        self.assertIsNone(self.machine.mount())
        self.addCleanup(self.machine.unmount)
        self.start_bus()
        self.configure(("cpuTemperature", "batteryTemperature"), ("fan1RPM", "fan2Percent"),
                       ("cpuUsage", "batteryPercent"))

    def wait_for(self, agent, metric, text):
        until(f"{metric}: {text}", lambda: agent.reading(metric) == text)

    def test_shows_what_the_chips_say_and_follows_them(self):
        agent = self.start_agent().wait_until_owner()
        self.wait_for(agent, CPU, "61°C")
        self.wait_for(agent, FAN, "2156")
        self.assertGreater(len(os.listdir(f"/proc/{agent.pid}/task")), 1)
        self.machine.set("hwmon/hwmon1/temp1_input", 74_000)
        self.machine.set("hwmon/hwmon0/fan1_input", 3_400)
        self.wait_for(agent, CPU, "74°C")
        self.wait_for(agent, FAN, "3400")
        self.assertEqual(agent.end(), 0)

    def test_shows_no_value_of_chips_that_are_gone(self):
        agent = self.start_agent().wait_until_owner()
        self.wait_for(agent, CPU, "61°C")
        for chip in ("hwmon0", "hwmon1"):
            self.machine.remove(self.machine.folder / "hwmon" / chip)
        self.wait_for(agent, CPU, "—")
        until("no fan", lambda: agent.reading(FAN) in ("—", None))
        self.assertEqual(agent.end(), 0)

    def test_pauses_and_resumes_while_the_sensors_are_read(self):
        agent = self.start_agent().wait_until_owner()
        self.wait_for(agent, CPU, "61°C")
        for _ in range(3):
            agent.choose("Pausar")
            until("the pause", lambda: "Retomar" in agent.menu())
            agent.choose("Retomar")
            until("the readings", lambda: "Pausar" in agent.menu())
        self.machine.set("hwmon/hwmon1/temp1_input", 82_000)
        self.wait_for(agent, CPU, "82°C")
        self.assertEqual(agent.end(), 0)

    def test_sleeps_and_wakes_with_its_sensors(self):
        self.start_logind()
        agent = self.start_agent().wait_until_owner()
        self.wait_for(agent, CPU, "61°C")
        until("the lock", self.holds_sleep)
        self.tell_sleep(True)
        until("the lock released", lambda: not self.holds_sleep())
        self.machine.set("hwmon/hwmon1/temp1_input", 90_000)
        self.tell_sleep(False)
        self.wait_for(agent, CPU, "90°C")
        self.assertEqual(agent.end(), 0)

    def test_ends_in_the_middle_of_a_reading(self):
        # Started and ended at once: the thread may be anywhere.
        for _ in range(5):
            agent = self.start_agent().wait_until_owner()
            self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    isolated([sys.executable, "-W", "ignore", *sys.argv], ISOLATED, network=False)
    if os.environ.get(ISOLATED) != "1":
        print("this system refuses mount namespaces")
        sys.exit(stage.SKIPPED)
    stage.main()
