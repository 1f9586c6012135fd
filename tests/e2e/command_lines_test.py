# SPDX-License-Identifier: MIT
"""The programs' command lines in an environment without a home, a display or a bus.

    /usr/bin/python3 command_lines_test.py VERSION PROGRAM...
"""

import os
import pty
import subprocess
import sys
import unittest

VERSION, *PROGRAMS = sys.argv[1:]
SETTINGS = [program for program in PROGRAMS if program.endswith("vantora-settings")]
OTHERS = [program for program in PROGRAMS if program not in SETTINGS]


def run(program, *arguments, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE):
    environment = {name: value for name, value in os.environ.items() if name.endswith("SAN_OPTIONS")}
    result = subprocess.run([program, *arguments], env=environment, stdin=stdin, stdout=stdout,
                            stderr=subprocess.PIPE, timeout=60, check=False)
    return result.returncode, (result.stdout or b"").decode(), result.stderr.decode()


class CommandLinesTest(unittest.TestCase):
    def assert_one_line(self, text, program):
        self.assertTrue(text.startswith(os.path.basename(program) + ": "), text)
        self.assertEqual((text.count("\n"), text[-1]), (1, "\n"), text)

    def test_help_and_version_answer(self):
        for program in PROGRAMS:
            name = os.path.basename(program)
            for option in ("--help", "-h"):
                status, output, errors = run(program, option)
                self.assertEqual((status, errors), (0, ""), program)
                self.assertTrue(output.startswith(f"Uso: {name}"), output)
                for word in ("--help", "--version"):
                    self.assertIn(word, output)
            self.assertEqual(run(program, "--version"), (0, f"{name} {VERSION}\n", ""))

    def test_the_help_fits_a_terminal(self):
        for program in PROGRAMS:
            for line in run(program, "--help")[1].splitlines():
                self.assertLessEqual(len(line), 90, line)

    def test_an_answer_that_cannot_be_written_is_an_error(self):
        for program in PROGRAMS:
            for option in ("--help", "--version"):
                with open("/dev/full", "wb") as full:
                    self.assertEqual(run(program, option, stdout=full)[0], 1, program)

    def test_an_unknown_option_is_named_in_one_line(self):
        for program in OTHERS:
            for option in ("--foo", "-x", "foo"):
                status, output, errors = run(program, option)
                self.assertEqual((status, output), (2, ""), program)
                self.assert_one_line(errors, program)
                self.assertIn(f"argumento desconhecido: {option} ", errors)

    def test_the_window_says_what_it_is_to_a_person(self):
        screen, terminal = pty.openpty()
        self.addCleanup(os.close, screen)
        self.addCleanup(os.close, terminal)
        for program in SETTINGS:
            for stdin in (subprocess.DEVNULL, terminal):
                for arguments in ((), ("--foo",), ("--menu",), ("--tool-tip",)):
                    status, output, errors = run(program, *arguments, stdin=stdin)
                    self.assertEqual((status, output), (2, ""), (arguments, errors))
                    self.assert_one_line(errors, program)

    def test_the_error_of_a_wrong_time_names_the_times_that_are_right(self):
        for program in PROGRAMS:
            if program.endswith("vantora-print"):
                self.assertEqual(run(program, "--timeout", "0")[2],
                                 'vantora-print: tempo inválido: "0" (mais de 0 e no máximo 86400 '
                                 "segundos) (veja vantora-print --help)\n")


unittest.main(argv=sys.argv[:1], verbosity=2)
