# SPDX-License-Identifier: MIT
"""What scripts/bench-peers computes: the readings that it makes, and the table."""
import os
import pathlib
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "bench/peers"))
import feed
import figures
import laptop
import programs

STATUS = "Name:\tvantora\nvoluntary_ctxt_switches:\t12\nnonvoluntary_ctxt_switches:\t900\n"
ROLLUP = """55d0-7ffc ---p 00000000 00:00 0 [rollup]
Rss:                5120 kB
Pss:                2048 kB
Private_Dirty:       900 kB
Anonymous:           768 kB
"""
SUMMARY = """% time     seconds  usecs/call     calls    errors syscall
------ ----------- ----------- --------- --------- ----------------
 60.00    0.000600          10        60           pread64
 40.00    0.000400           8        52        12 recvmsg
------ ----------- ----------- --------- --------- ----------------
100.00    0.001000           9       112        12 total
"""


def usage(mode, first, steps):
    """What a program shows that reads the counters at two steps."""
    busy = feed.busy_ticks(mode, first + steps) - feed.busy_ticks(mode, first)
    return round(100 * busy / (steps * feed.TICKS))


class FeedTest(unittest.TestCase):
    def test_shows_one_usage_all_the_time_while_it_stands_still(self):
        shown = {usage("still", first, steps) for first in range(80) for steps in (3, 4, 5)}
        self.assertEqual(shown, {16})

    def test_shows_another_usage_each_second_while_it_moves_wherever_the_second_begins(self):
        for first in range(2 * feed.STEPS * feed.LEVELS):
            self.assertNotEqual(usage("moving", first, feed.STEPS),
                                usage("moving", first + feed.STEPS, feed.STEPS))

    def test_sends_another_number_of_frames_each_second_while_it_moves(self):
        def second(first):
            return sum(feed.frames("moving", step) for step in range(first, first + feed.STEPS))

        # Rates are shown in steps of 10 kB/s.
        for first in range(2 * feed.STEPS * feed.LEVELS):
            self.assertGreater(abs(second(first) - second(first + feed.STEPS)) * feed.FRAME, 10_000)

    def test_sends_nothing_while_it_stands_still(self):
        self.assertEqual(sum(feed.frames("still", step) for step in range(100)), 0)

    def test_counts_a_second_of_ticks_for_each_processor(self):
        text = feed.stat("ctxt 7\n", 2, busy=40, total=100)
        lines = text.splitlines()
        self.assertEqual([line.split()[0] for line in lines], ["cpu", "cpu0", "cpu1", "ctxt"])
        busy, idle = int(lines[1].split()[1]), int(lines[1].split()[4])
        self.assertEqual((busy - feed.START, idle - feed.START), (40, 60))
        self.assertEqual(int(lines[0].split()[1]), 2 * busy)

    def test_never_gets_shorter(self):
        # It is written over itself.
        lengths = {len(feed.stat("", 2, feed.busy_ticks("moving", step), step * feed.TICKS))
                   for step in range(0, 4000, 400)}
        self.assertEqual(len(lengths), 1)

    def test_keeps_the_other_lines_of_the_machine(self):
        self.assertEqual(feed.other_lines("cpu  1 2\ncpu0 1 2\nintr 5\nctxt 7\n"),
                         "intr 5\nctxt 7\n")


class LaptopTest(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        laptop.fill(self.folder.name)

    def read(self, path):
        return (pathlib.Path(self.folder.name) / path).read_text(encoding="utf-8").strip()

    def test_has_what_each_program_reads(self):
        self.assertEqual(self.read("power_supply/BAT0/capacity"), "70")
        self.assertEqual(self.read("power_supply/AC/online"), "1")
        self.assertEqual(self.read("thermal/thermal_zone0/temp"), "52000")
        self.assertEqual(self.read("net/eth0/address"), laptop.ADDRESS)

    def test_shows_the_same_temperature_in_both_places(self):
        chips = pathlib.Path(self.folder.name).glob("hwmon/*")
        core = next(chip for chip in chips if (chip / "name").read_text() == "coretemp\n")
        hottest = max(int(each.read_text()) for each in core.glob("temp*_input"))
        self.assertEqual(str(hottest), self.read("thermal/thermal_zone0/temp"))

    def test_says_in_the_uevent_what_the_attributes_say(self):
        lines = self.read("power_supply/BAT0/uevent").splitlines()
        self.assertEqual(lines[0], "POWER_SUPPLY_NAME=BAT0")
        self.assertIn("POWER_SUPPLY_CAPACITY=70", lines)
        self.assertIn("POWER_SUPPLY_STATUS=Charging", lines)


class FiguresTest(unittest.TestCase):
    def test_counts_the_voluntary_switches_alone(self):
        self.assertEqual(figures.switches_in(STATUS), 12)

    def test_reads_memory_as_it_is(self):
        self.assertEqual(figures.memory_in(ROLLUP),
                         {"RSS MB": 5.0, "PSS MB": 2.0, "Anonymous MB": 0.75})

    def test_counts_system_calls_with_and_without_errors(self):
        self.assertEqual(figures.calls_in(SUMMARY), 112)
        self.assertEqual(figures.calls_in(SUMMARY.replace("       112        12 total",
                                                          "       100           total")), 100)
        self.assertEqual(figures.calls_in(""), 0)

    def test_gives_what_was_used_by_the_minute(self):
        clock, cpu, woken = iter([100, 130]), iter([1.0, 1.02]), iter([5, 35])
        span = figures.Span(1, lambda: next(clock), lambda pid: next(cpu), lambda pid: next(woken))
        row = span.row()
        self.assertAlmostEqual(row["CPU ms/min"], 40)
        self.assertAlmostEqual(row["switches/min"], 60)

    def test_gives_ratios_to_the_first_row(self):
        text = figures.table({"Vantora": {"CPU ms/min": 10.0, "switches/min": 0},
                              "other": {"CPU ms/min": 25.0, "switches/min": 60}})
        self.assertIn("25.0 (2.50x)", text)
        self.assertIn("60.0 (-)", text)
        self.assertNotIn("RSS", text)


class ProgramsTest(unittest.TestCase):
    def test_reads_the_interval_of_a_shipped_configuration(self):
        self.assertEqual(programs.interval_of("general {\n  colors = true\n  interval = 5\n}\n"), 5)
        self.assertEqual(programs.interval_of("# interval = 9\ngeneral { }\n"), 1)

    def test_writes_the_configuration_that_each_command_names(self):
        with tempfile.TemporaryDirectory() as folder:
            programs.write(folder)
            for command in programs.commands(folder, "/bin").values():
                for argument in command[1:]:
                    if argument.startswith("/"):
                        self.assertTrue(os.path.exists(argument), argument)

    def test_tells_who_may_not_make_the_laptop(self):
        # Without a program that makes namespaces there are none.
        done = subprocess.run(["/usr/bin/python3", ROOT / "bench/peers/measure.py", "1", "/bin"],
                              env={"PATH": "/nowhere"}, capture_output=True, text=True, check=False)
        self.assertEqual(done.returncode, 1)
        self.assertIn("cannot give all programs the same readings", done.stderr)


unittest.main()
