#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""A driver that never answers: a laptop on a mocked machine (umockdev) of which one attribute
blocks every reader.

    umockdev-wrapper /usr/bin/python3 hung_driver_test.py VANTORA PRINT BLOCKED_DRIVER MACHINES
"""

import json
import os
import subprocess
import sys
import time

import power_test
import stage
from stage import until

PRINT = BLOCKED_DRIVER = ""

# What the agent may take to end: a second for the thread, a third for the children.
END_LIMIT = 2


class HungDriverTest(stage.StageTest):
    def setUp(self):
        super().setUp()
        self.machine = power_test.Machine("thinkpad-t440s")
        self.environment["UMOCKDEV_DIR"] = self.machine.testbed.get_root_dir()
        self.configure(("cpuUsage", "download"), ("batteryPercent", "cpuTemperature"))

    def block(self, attribute):
        # In front of the mock, for what it answers in its place.
        self.environment["LD_PRELOAD"] = BLOCKED_DRIVER + ":" + os.environ["LD_PRELOAD"]
        self.environment["BLOCKED_ATTRIBUTE"] = "/" + attribute

    def printed(self):
        """What one print shows: the values by their metrics, and the reasons."""
        output = subprocess.run(
            [PRINT, "--timeout", "10", "--format", "json"], env=self.environment,
            stdout=subprocess.PIPE, check=True, timeout=stage.TIMEOUT).stdout
        samples = json.loads(output)["samples"]
        return {name: sample["value"] if sample["quality"] == "valid" else sample["source"]
                for name, sample in samples.items()}

    def assert_network_was_read(self, value):
        # The machine that runs this may have no network.
        if value != "Sem interface física ativa":
            self.assertIsInstance(value, float)

    def test_sensors_that_hang_cost_only_the_sensors(self):
        self.block("temp1_input")
        values = self.printed()
        self.assertEqual(values["cpuTemperature"], "Linux hwmon · os sensores não respondem")
        self.assertEqual(values["batteryPercent"], 78.6)
        self.assertIsInstance(values["cpuUsage"], float)
        self.assert_network_was_read(values["download"])

    def test_a_battery_that_hangs_costs_only_the_battery(self):
        self.block("capacity")
        values = self.printed()
        self.assertEqual(values["batteryPercent"], "Linux power_supply · a bateria não responde")
        self.assertEqual(values["cpuTemperature"], 49)
        self.assertIsInstance(values["cpuUsage"], float)
        self.assert_network_was_read(values["download"])

    def test_the_agent_ends_all_the_same_and_gives_up_its_name(self):
        self.block("temp1_input")
        self.start_bus()
        tool = self.quota_tool("claude", "stubborn")
        self.configure(("cpuUsage", "claudeWeeklyPercent"), ("batteryPercent", "cpuTemperature"),
                       claudeSettings=stage.CLAUDE)
        agent = self.start_agent().wait_until_owner()
        child = tool.wait_for_start()
        until("the reading of the CPU", lambda: "%" in agent.text())
        begin = time.monotonic()
        agent.process.terminate()
        until("the end of the name", lambda: self.owner() is None)
        self.assertEqual(agent.process.wait(stage.TIMEOUT), 0)
        self.assertLess(time.monotonic() - begin, END_LIMIT)
        self.assertFalse(stage.is_running(child))
        self.assertEqual(agent.said(), [])


if __name__ == "__main__":
    PRINT, BLOCKED_DRIVER, power_test.MACHINES = (sys.argv.pop(2) for _ in range(3))
    stage.main()
