# SPDX-License-Identifier: MIT
"""What scripts/run-tests passes and fails, on reports in CTest's own form."""
import importlib.machinery
import importlib.util
import os
import tempfile
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../scripts/run-tests")
loader = importlib.machinery.SourceFileLoader("run_tests", SCRIPT)
run_tests = importlib.util.module_from_spec(
    importlib.util.spec_from_loader("run_tests", loader))
loader.exec_module(run_tests)


def report(**states):
    cases = "".join(
        f'<testcase name="{name}" status="{state}"><system-out>first\n\nlast of {name}\n'
        "</system-out></testcase>" for name, state in states.items())
    return run_tests.read_report(f'<testsuite name="x">{cases}</testsuite>')


class RunTests(unittest.TestCase):
    def judge(self, *rounds, may_repeat=False, in_ci=True, path=None):
        """`rounds` are the reports of one CTest run after another."""
        self.said, self.asked, self.counts = [], [], []
        rounds = list(rounds)

        def run(names):
            self.asked.append(names)
            cases = rounds.pop(0)
            return (8 if any(case.has_failed for case in cases) else 0), cases
        return run_tests.judge(run, run_tests.Repeats(path), may_repeat, in_ci, self.said.append,
                               lambda *numbers: self.counts.append(numbers))

    def test_passes_what_ran_and_passed(self):
        self.assertEqual(self.judge(report(a="run", b="run")), 0)

    def test_fails_a_skipped_test_in_ci_and_names_it(self):
        for state in ("notrun", "disabled"):
            self.assertEqual(self.judge(report(a="run", b=state)), 1)
            self.assertIn("run-tests: skipped: b", self.said)

    def test_names_a_skipped_test_elsewhere(self):
        self.assertEqual(self.judge(report(a="run", b="notrun"), in_ci=False), 0)
        self.assertIn("run-tests: skipped: b", self.said)

    def test_counts_how_each_test_ended(self):
        self.judge(report(a="run", b="notrun", c="fail"), report(c="run"), may_repeat=True)
        self.assertEqual(self.counts, [(2, 0, 1)])
        self.judge(report(a="run", b="fail"))
        self.assertEqual(self.counts, [(1, 1, 0)])

    def test_repeats_nothing_unless_told(self):
        self.assertEqual(self.judge(report(a="fail")), 1)
        self.assertEqual(self.asked, [None])

    def test_repeats_what_failed_and_prints_the_cause(self):
        self.assertEqual(
            self.judge(report(a="run", b="fail"), report(b="run"), may_repeat=True), 0)
        self.assertEqual(self.asked, [None, ["b"]])
        self.assertIn("    last of b", self.said)
        self.assertIn("run-tests: 1 repeats so far, at most 2 in a run", self.said)

    def test_fails_a_test_that_fails_three_times(self):
        self.assertEqual(
            self.judge(report(b="fail"), report(b="fail"), report(b="fail"), may_repeat=True), 1)
        self.assertEqual(len(self.asked), 3)

    def test_fails_a_run_with_three_repeats_without_trying_again(self):
        self.assertEqual(
            self.judge(report(a="fail", b="fail", c="fail"), may_repeat=True), 1)
        self.assertEqual(self.asked, [None])

    def test_counts_the_repeats_of_several_calls(self):
        with tempfile.TemporaryDirectory() as folder:
            path = os.path.join(folder, "count")
            pair = report(a="fail"), report(a="run")
            self.assertEqual(self.judge(*pair, may_repeat=True, path=path), 0)
            self.assertEqual(self.judge(*pair, may_repeat=True, path=path), 0)
            self.assertEqual(self.judge(*pair, may_repeat=True, path=path), 1)

    def test_fails_a_test_that_is_skipped_in_its_repetition(self):
        self.assertEqual(self.judge(report(a="fail"), report(a="notrun"), may_repeat=True), 1)

    def test_fails_where_ctest_failed_without_a_failed_test(self):
        self.assertEqual(run_tests.judge(lambda names: (1, []), run_tests.Repeats(None), True,
                                         False, lambda line: None), 1)


unittest.main()
