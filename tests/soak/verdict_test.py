# SPDX-License-Identifier: MIT
"""Whether scripts/soak would notice: the verdict on made-up runs of an hour."""
import os
import random
import sys
import unittest

sys.path.insert(0, os.path.join(os.path.dirname(__file__), "../../bench/soak"))
import verdict

HOUR = 3600


def run(**changes):
    """A flat hour with the noise of a real one. `changes` are functions of the second and the
    phase that say what a column holds instead."""
    chance = random.Random(1)
    samples = []
    for step in range(1, HOUR // 5):
        second = step * 5
        phase = "rest" if second % 300 > 285 else "stir"
        stirs = phase == "stir"
        sample = {"second": second, "phase": phase,
                  "rss_kib": 6000 + chance.randrange(600), "pss_kib": 3500,
                  "anonymous_kib": 1200 + chance.randrange(400),
                  "descriptors": 26 + 3 * chance.randrange(4) * stirs, "threads": 2,
                  "cpu_ms": second * 5, "voluntary": second * 20, "involuntary": second,
                  "children": 3 if stirs else 0, "zombies": 0, "oldest_assistant": 9.5 * stirs}
        for column, change in changes.items():
            sample[column] = change(second, sample)
        samples.append(sample)
    return samples


class Verdict(unittest.TestCase):
    def faults(self, **changes):
        return "; ".join(verdict.judge(run(**changes), HOUR))

    def test_finds_nothing_in_a_flat_run(self):
        self.assertEqual(self.faults(), "")

    def test_lets_the_first_ten_minutes_settle(self):
        self.assertEqual(self.faults(
            anonymous_kib=lambda second, sample: sample["anonymous_kib"] + 900 * (second < 590),
            threads=lambda second, sample: 2 + (second < 590)), "")

    def test_finds_one_descriptor_that_stays_open(self):
        self.assertIn("descriptors at rest", self.faults(
            descriptors=lambda second, sample: sample["descriptors"] + (second > 3000)))

    def test_finds_descriptors_that_pile_up_between_the_rests(self):
        self.assertIn("descriptors", self.faults(
            descriptors=lambda second, sample: 26 + 30 * (sample["phase"] == "stir")))

    def test_finds_another_thread(self):
        self.assertIn("threads", self.faults(threads=lambda second, sample: 2 + (second == 2000)))

    def test_finds_a_child_at_rest(self):
        self.assertIn("children at rest", self.faults(children=lambda second, sample: 1))

    def test_finds_too_many_children(self):
        self.assertIn("children", self.faults(
            children=lambda second, sample: 40 if second == 2000 else sample["children"]))

    def test_finds_a_child_that_was_not_ended(self):
        self.assertIn("a quota child of 90 s", self.faults(
            oldest_assistant=lambda second, sample: 90 if second == 2000 else 0))

    def test_finds_a_zombie_at_any_time(self):
        self.assertIn("zombies in 1 samples",
                      self.faults(zombies=lambda second, sample: int(second == 20)))

    def test_finds_anonymous_memory_that_grows_slowly(self):
        self.assertIn("anonymous memory grows", self.faults(
            anonymous_kib=lambda second, sample: sample["anonymous_kib"] + second * 240 / HOUR))

    def test_lets_memory_be_taken_for_a_moment(self):
        self.assertEqual(self.faults(
            anonymous_kib=lambda second, sample: sample["anonymous_kib"] +
            3000 * (second > 1800 and second % 20 < 15)), "")

    def test_finds_resident_memory_that_grows(self):
        self.assertIn("resident memory grows", self.faults(
            rss_kib=lambda second, sample: sample["rss_kib"] + second * 300 / HOUR))

    def test_draws_no_line_through_a_short_run(self):
        samples = [sample for sample in run(
            rss_kib=lambda second, sample: 5000 + second / 3) if sample["second"] < 1500]
        for sample in samples:
            sample["second"] /= 5
        self.assertEqual(verdict.judge(samples, 300), [])

    def test_leaves_memory_alone_when_told_to(self):
        samples = run(anonymous_kib=lambda second, sample: second)
        self.assertEqual(verdict.judge(samples, HOUR, memory=False), [])

    def test_finds_a_step_that_is_no_line(self):
        self.assertIn("anonymous memory went", self.faults(
            anonymous_kib=lambda second, sample: sample["anonymous_kib"] + 500 * (second > 3200)))

    def test_judges_no_run_that_is_too_short(self):
        samples = [sample for sample in run() if sample["second"] < 1000]
        self.assertIn("too short", "; ".join(verdict.judge(samples, HOUR)))

    def test_writes_a_line_for_each_span(self):
        lines = verdict.table(run(), HOUR)
        self.assertEqual(len(lines), 2 + 12 + 3)


unittest.main()
