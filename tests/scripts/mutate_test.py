# SPDX-License-Identifier: MIT
"""What scripts/mutate changes in a line, and what it leaves alone."""
import importlib.machinery
import importlib.util
import os
import unittest

SCRIPT = os.path.join(os.path.dirname(os.path.abspath(__file__)), "../../scripts/mutate")
loader = importlib.machinery.SourceFileLoader("mutate", SCRIPT)
mutate = importlib.util.module_from_spec(importlib.util.spec_from_loader("mutate", loader))
loader.exec_module(mutate)


class Mutate(unittest.TestCase):
    def assert_changes(self, line, *expected):
        self.assertEqual(mutate.changes_of_line(line), list(expected))

    def test_moves_a_comparison(self):
        self.assert_changes("  return a < b;", "  return a <= b;")
        self.assert_changes("  return a == b;", "  return a != b;")

    def test_leaves_templates_and_pointers(self):
        self.assert_changes("  std::vector<int> list;")
        self.assert_changes("  const Part* part = nullptr;")

    def test_changes_numbers_of_every_form(self):
        self.assert_changes("constexpr double limit = 0.99;", "constexpr double limit = 1.99;")
        self.assert_changes("constexpr int size = 65'536;", "constexpr int size = 65537;")
        self.assert_changes("constexpr auto lead = 0xC2U;", "constexpr auto lead = 0xc3U;")
        self.assert_changes("constexpr Seconds wait{60};", "constexpr Seconds wait{61};")

    def test_negates_a_condition(self):
        self.assert_changes("  if (isReady()) {", "  if (!(isReady())) {")
        self.assert_changes("  if (const auto x = find(); x) {")

    def test_drops_calls_and_assignments_but_no_declaration(self):
        self.assert_changes("  timer_.cancel();", "  ;")
        self.assert_changes("  state_ = other;", "  ;")
        self.assert_changes("  Timer timer(queue);")
        self.assert_changes("  const auto state = other;")

    def test_leaves_literals_and_comments(self):
        self.assert_changes('  say("a < b and 7");', "  ;")
        self.assert_changes("  // a < b, and 7")
        self.assert_changes("  next();  // 7 < 8", "  ;")


unittest.main()
