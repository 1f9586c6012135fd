#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Battery, sensors and power events from end to end.

A mocked machine (umockdev) and a mocked logind (dbusmock, on a bus of the test's own) on the
outside, the adapters in a program of their own on the inside.

    umockdev-wrapper /usr/bin/python3 power_test.py PROBE PRINT MACHINES
"""

import json
import os
import select
import subprocess
import sys
import tempfile
import time
import unittest

import gi

gi.require_version("UMockdev", "1.0")
from gi.repository import UMockdev  # noqa: E402

import dbusmock  # noqa: E402

import stage  # noqa: E402

PROBE, PRINT, MACHINES = "", "", ""
TIMEOUT = 10  # seconds


def read_machine(name):
    """The folders of a described machine, each with its attributes."""
    folders, folder = {}, None
    with open(os.path.join(MACHINES, name + ".txt"), encoding="utf-8") as lines:
        for line in lines.read().splitlines():
            if line.startswith("["):
                folder = folders.setdefault(line[1:-1], [])
            elif "=" in line and "->" not in line and not line.startswith("#"):
                # What a driver writes ends with a line end; the testbed adds none.
                folder.extend((line.split("=", 1)[0], line.split("=", 1)[1] + "\n"))
    return folders


class Machine:
    """A testbed with the devices of a described machine."""

    def __init__(self, name):
        self.testbed = UMockdev.Testbed.new()
        self.devices = {}
        for path, attributes in read_machine(name).items():
            subsystem, _, device = path.partition("/")
            if device:
                self.devices[device] = self.testbed.add_device(
                    subsystem, device, None, attributes, []
                )

    def set(self, device, attribute, value):
        self.testbed.set_attribute(self.devices[device], attribute, value + "\n")

    def announce(self, device, action="change"):
        self.testbed.uevent(self.devices[device], action)


class Program:
    """A program under test. Lines it says are waited for, never slept for."""

    def __init__(self, command, machine, bus_address="unix:path=/nowhere/at/all", **variables):
        # The testbed sets its variable behind Python's back.
        environment = dict(
            os.environ,
            DBUS_SYSTEM_BUS_ADDRESS=bus_address,
            UMOCKDEV_DIR=machine.testbed.get_root_dir(),
            **variables,
        )
        self.process = subprocess.Popen(
            command, env=environment, stdin=subprocess.PIPE, stdout=subprocess.PIPE
        )
        self.pending = b""

    def line(self, timeout=TIMEOUT):
        while b"\n" not in self.pending:
            if not select.select([self.process.stdout], [], [], timeout)[0]:
                return None
            read = os.read(self.process.stdout.fileno(), 4096)
            if not read:
                return None
            self.pending += read
        line, self.pending = self.pending.split(b"\n", 1)
        return line.decode()

    def end(self):
        self.process.stdin.close()
        status = self.process.wait(TIMEOUT)
        self.process.stdout.close()
        return status


class Probe(Program):
    """What the adapters see. Ends with its standard input."""

    def __init__(self, machine, *bus_address):
        super().__init__([PROBE], machine, *bus_address)


class Following(Program):
    """vantora-print that shows the CPU once a second, as JSON lines."""

    def __init__(self, machine, bus_address, home):
        module = {
            "id": "7D0F3A52-3C5B-4A52-9F0C-1E1B5F0A6C11", "enabled": True, "top": "cpuUsage",
            "bottom": "none", "widthMode": "fixed", "width": 40, "fontTop": 9, "fontBottom": 9,
            "alignment": "left",
        }
        document = {
            "schemaVersion": 1, "intervalSeconds": 1, "modules": [module], "gap": 4,
            "horizontalPadding": 3, "verticalPadding": 0, "lineGap": 0, "paused": False,
        }
        os.mkdir(os.path.join(home, "Vantora"))
        with open(os.path.join(home, "Vantora", "configuration.json"), "w") as file:
            json.dump(document, file)
        super().__init__(
            [PRINT, "--follow", "--format", "json"], machine, bus_address,
            HOME=home, XDG_CONFIG_HOME=home,
        )

    def quality(self, timeout=TIMEOUT):
        """Of the CPU sample in the next line; nothing when none comes."""
        line = self.line(timeout)
        if line is None:
            return None
        printed = json.loads(line)
        assert printed["notice"] is None, printed["notice"]
        return printed["samples"]["cpuUsage"]["quality"]

    def qualities_until(self, wanted):
        """Those that come first, up to the wanted one."""
        seen = [self.quality()]
        while seen[-1] not in (wanted, None):
            seen.append(self.quality())
        return seen

    def end(self):
        self.process.terminate()
        return super().end()


class PowerTest(unittest.TestCase):
    def start(self):
        probe = Probe(self.machine)
        self.addCleanup(lambda: self.assertEqual(probe.end(), 0))
        return probe

    def test_reads_a_thinkpad(self):
        self.machine = Machine("thinkpad-t440s")
        probe = self.start()
        self.assertEqual(
            probe.line(), "battery percent=78.60 minutes=239.94 watts=- ac=0 charging=0"
        )
        self.assertEqual(probe.line(), "sensors cpu=49.00 battery=- rpm=3325.00 fan=-")

    def test_reads_an_xps_on_usb_c(self):
        self.machine = Machine("dell-xps-13-9370")
        probe = self.start()
        self.assertEqual(
            probe.line(), "battery percent=70.00 minutes=48.00 watts=45.00 ac=1 charging=1"
        )
        self.assertEqual(probe.line(), "sensors cpu=52.00 battery=- rpm=2450.00 fan=50.00")

    def test_makes_nothing_up_on_a_machine_without_anything(self):
        self.machine = Machine("raspberry-pi-4")
        probe = self.start()
        self.assertEqual(probe.line(), "battery percent=- minutes=- watts=- ac=0 charging=0")
        self.assertEqual(probe.line(), "sensors cpu=47.71 battery=- rpm=- fan=-")

    def test_reads_anew_when_the_adapter_is_plugged_in(self):
        self.machine = Machine("macbook-air-m2-asahi")
        probe = self.start()
        self.assertEqual(
            probe.line(), "battery percent=82.40 minutes=529.00 watts=- ac=0 charging=0"
        )
        self.assertEqual(probe.line(), "sensors cpu=- battery=30.40 rpm=- fan=-")
        self.machine.set("macsmc-ac", "online", "1")
        self.machine.set("macsmc-ac", "input_power_limit", "30000000")
        self.machine.set("macsmc-battery", "status", "Charging")
        self.machine.set("macsmc-battery", "time_to_full_now", "2400")
        self.machine.announce("macsmc-ac")
        self.assertEqual(
            probe.line(), "battery percent=82.40 minutes=40.00 watts=30.00 ac=1 charging=1"
        )

    def test_is_not_told_of_other_devices(self):
        self.machine = Machine("macbook-air-m2-asahi")
        probe = self.start()
        probe.line(), probe.line()
        for _ in range(20):
            self.machine.announce("hwmon0")
        self.machine.announce("macsmc-battery")
        self.assertTrue(probe.line().startswith("battery "))
        self.assertTrue(probe.line().startswith("sensors "))
        self.assertIsNone(probe.line(timeout=0.3))


class PrintTest(unittest.TestCase):
    """The same through vantora-print, with the configuration of the first start."""

    def samples(self, machine, document=None):
        mocked = Machine(machine)
        with tempfile.TemporaryDirectory() as home:
            if document is not None:
                os.mkdir(os.path.join(home, "Vantora"))
                with open(os.path.join(home, "Vantora/configuration.json"), "w",
                          encoding="utf-8") as file:
                    json.dump(document, file)
            environment = dict(
                os.environ,
                UMOCKDEV_DIR=mocked.testbed.get_root_dir(),
                DBUS_SYSTEM_BUS_ADDRESS="unix:path=/nowhere/at/all",
                HOME=home,
                XDG_CONFIG_HOME=home,
            )
            output = subprocess.run(
                [PRINT, "--format", "json"], env=environment, check=True,
                stdout=subprocess.PIPE, timeout=60,
            ).stdout
        return json.loads(output)

    def test_prints_the_readings_of_an_xps(self):
        printed = self.samples("dell-xps-13-9370")
        samples = printed["samples"]
        self.assertEqual(samples["batteryPercent"]["value"], 70)
        self.assertEqual(samples["batteryTime"]["value"], 48)
        self.assertEqual(samples["cpuTemperature"]["value"], 52)
        self.assertTrue(printed["batteryOnAC"] and printed["batteryCharging"])

    def test_begins_without_the_module_of_a_battery_that_cannot_be(self):
        printed = self.samples("raspberry-pi-4")
        self.assertNotIn("batteryPercent", printed["samples"])
        self.assertEqual([module["top"]["metric"] for module in printed["modules"]],
                         ["upload", "cpuUsage"])

    def test_prints_reasons_where_a_machine_has_nothing(self):
        samples = self.samples("raspberry-pi-4", stage.configuration(
            ("batteryPercent", "cpuTemperature")))["samples"]
        self.assertEqual(samples["batteryPercent"]["quality"], "unavailable")
        self.assertEqual(samples["batteryPercent"]["source"], "Bateria interna indisponível")
        self.assertEqual(samples["cpuTemperature"]["value"], 47.712)


class SleepTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.address = "unix:path=" + os.path.join(self.folder.name, "bus")
        self.daemon = subprocess.Popen(
            ["dbus-daemon", "--session", "--nofork", "--print-address=1",
             "--address=" + self.address],
            stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
        )
        self.addCleanup(self.stop, self.daemon)
        self.daemon.stdout.readline()
        os.environ["DBUS_SYSTEM_BUS_ADDRESS"] = self.address

    @staticmethod
    def stop(process):
        process.kill()
        process.wait()
        if process.stdout:
            process.stdout.close()

    def start_logind(self):
        # The service itself is no part of the mocked machine.
        preload = os.environ.pop("LD_PRELOAD")
        server, self.logind = dbusmock.DBusTestCase.spawn_server_template(
            "logind", {}, stdout=subprocess.DEVNULL
        )
        os.environ["LD_PRELOAD"] = preload
        self.addCleanup(self.stop, server)

    def sleep(self, begins):
        self.logind.EmitSignal(
            "org.freedesktop.login1.Manager", "PrepareForSleep", "b", [begins],
            dbus_interface=dbusmock.MOCK_IFACE,
        )

    def wait_for_lock(self, present=True):
        """Until an inhibitor of ours is held, or none is."""
        deadline = time.monotonic() + TIMEOUT
        while time.monotonic() < deadline:
            locks = self.logind.ListInhibitors(dbus_interface="org.freedesktop.login1.Manager")
            if present == any(
                (lock[0], lock[1], lock[3]) == ("sleep", "Vantora", "delay") for lock in locks
            ):
                return
            time.sleep(0.02)
        self.fail("lock expected: %s" % present)

    def test_holds_sleep_up_and_takes_a_new_lock_on_wake(self):
        self.machine = Machine("raspberry-pi-4")
        self.start_logind()
        probe = Probe(self.machine, self.address)
        self.addCleanup(probe.end)
        probe.line(), probe.line()
        for _ in range(2):
            self.wait_for_lock()
            self.sleep(True)
            self.assertEqual(probe.line(), "sleep held=1")
            self.wait_for_lock(present=False)  # the probe has nothing to stop
            self.sleep(False)
            self.assertEqual(probe.line(), "wake")
        self.wait_for_lock()

    def test_finds_a_logind_that_starts_later(self):
        self.machine = Machine("raspberry-pi-4")
        probe = Probe(self.machine, self.address)
        self.addCleanup(probe.end)
        probe.line(), probe.line()
        self.start_logind()
        # The mock takes its name before it knows its methods, so the first lock may fail.
        self.sleep(True)
        self.assertIn(probe.line(), ("sleep held=0", "sleep held=1"))
        self.sleep(False)
        self.assertEqual(probe.line(), "wake")
        self.wait_for_lock()

    def test_prints_no_rate_that_spans_a_sleep(self):
        self.machine = Machine("raspberry-pi-4")
        self.start_logind()
        home = tempfile.TemporaryDirectory()
        self.addCleanup(home.cleanup)
        printer = Following(self.machine, self.address, home.name)
        self.addCleanup(printer.end)
        self.assertEqual(printer.qualities_until("valid")[-1], "valid")
        for _ in range(2):
            self.wait_for_lock()
            self.sleep(True)
            self.wait_for_lock(present=False)  # everything has stopped
            while printer.line(timeout=0) is not None:
                pass  # what was printed before
            self.assertIsNone(printer.line(timeout=2.5))
            self.sleep(False)
            self.assertEqual(printer.qualities_until("valid"), ["waiting", "valid"])


if __name__ == "__main__":
    PROBE, PRINT, MACHINES = sys.argv[1:4]
    unittest.main(argv=sys.argv[:1] + sys.argv[4:])
