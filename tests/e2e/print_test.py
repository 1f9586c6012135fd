#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""vantora-print as other programs start it: with good and bad arguments and
configurations, and with standard outputs that are closed, full or not read.

Usage: print_test.py PROGRAM
"""

import fcntl
import json
import os
import pathlib
import resource
import select
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import unittest

import jsonschema
import stage

PROGRAM = sys.argv.pop(1)
SCHEMA = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                      "../../docs/vantora-print.schema.json")
NOTICE = "Configuração inválida preservada em disco; padrão carregado."
VALID = ('{"schemaVersion":1,"intervalSeconds":1,"modules":[],"gap":4,"horizontalPadding":3,'
         '"verticalPadding":0,"lineGap":0,"paused":false}')


def resize(terminal, columns):
    fcntl.ioctl(terminal, termios.TIOCSWINSZ, struct.pack("HHHH", 24, columns, 0, 0))


def layout(*metrics):
    """A document that shows these metrics."""
    return json.dumps(stage.configuration(*((metric, "none") for metric in metrics)))


class PrintTest(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.home = pathlib.Path(folder.name)
        self.document = self.home / "Vantora/configuration.json"
        self.environment = dict(os.environ, XDG_CONFIG_HOME=folder.name)

    def start(self, *arguments, stdout=subprocess.PIPE, preexec_fn=None):
        return subprocess.run([PROGRAM, *arguments], stdout=stdout, stderr=subprocess.PIPE,
                              env=self.environment, preexec_fn=preexec_fn, timeout=30)

    def report(self):
        result = self.start("--format", "json", "--timeout", "0.05")
        self.assertEqual(result.returncode, 0, result.stderr)
        return json.loads(result.stdout)

    def store(self, content):
        self.document.parent.mkdir(exist_ok=True)
        self.document.write_text(content)

    def test_says_when_it_may_open_too_few_files(self):
        # A leak checker could not open what it reads.
        self.environment["ASAN_OPTIONS"] = "detect_leaks=0"
        for limit in range(4, 19):
            result = self.start(preexec_fn=lambda: resource.setrlimit(
                resource.RLIMIT_NOFILE, (limit, limit)))
            self.assertEqual(
                (result.returncode, result.stdout, result.stderr.decode()),
                (1, b"", "vantora-print: não é possível iniciar: o limite de arquivos abertos do "
                         "processo é baixo demais (ulimit -n)\n"), limit)

    def test_starts_from_the_defaults_without_a_document(self):
        report = self.report()
        self.assertEqual(len(report["modules"]), 3 if stage.has_battery() else 2)
        self.assertIsNone(report["notice"])
        self.assertEqual(os.listdir(self.home), [])

    def test_reads_the_stored_document(self):
        self.store(VALID)
        self.assertEqual(self.report()["modules"], [])

    def test_prints_json_as_its_schema_says(self):
        with open(SCHEMA, encoding="utf-8") as file:
            schema = json.load(file)
        jsonschema.Draft202012Validator.check_schema(schema)
        validator = jsonschema.Draft202012Validator(schema)
        validator.validate(self.report())  # of the defaults
        metrics = schema["$defs"]["metric"]["enum"]
        self.store(json.dumps(stage.configuration(
            *((metric, "none") for metric in metrics),
            claudeSettings=stage.CLAUDE, codexSettings=stage.CODEX)))
        report = self.report()
        self.assertEqual(set(report["samples"]), set(metrics) - {"none"})
        validator.validate(report)
        self.store("no JSON")
        validator.validate(self.report())
        for member in list(report):
            self.assertFalse(validator.is_valid(
                {name: value for name, value in report.items() if name != member}), member)
        self.assertFalse(validator.is_valid(dict(report, more=1)))

    def test_tells_of_every_document_that_it_cannot_use_and_leaves_it_alone(self):
        for content in ["", "no JSON", "[" * 300000, VALID.replace('"intervalSeconds":1',
                                                                  '"intervalSeconds":3')]:
            self.store(content)
            report = self.report()
            self.assertEqual(report["notice"], NOTICE)
            self.assertEqual(len(report["modules"]), 3)
            self.assertEqual(self.document.read_text(), content)

    def test_tells_of_a_document_that_is_no_file_and_of_a_huge_one(self):
        self.document.mkdir(parents=True)
        self.assertEqual(self.report()["notice"], NOTICE)
        self.document.rmdir()
        os.mkfifo(self.document)
        self.assertEqual(self.report()["notice"], NOTICE)
        self.document.unlink()
        with open(self.document, "wb") as file:
            file.truncate(100_000_000)
        self.assertEqual(self.report()["notice"], NOTICE)

    def test_tells_of_the_document_on_standard_error_where_the_format_has_no_place_for_it(self):
        self.store("no JSON")
        for form in ["text", "i3bar", "waybar"]:
            result = self.start("--format", form, "--timeout", "0.05")
            self.assertEqual(result.stderr.decode(), f"vantora-print: {NOTICE}\n")
        self.assertEqual(self.start("--format", "json", "--timeout", "0.05").stderr, b"")

    def start_on_terminal(self, *arguments):
        """A running program on a terminal of 24 lines of 60 characters: the process, and what
        the terminal has shown so far by a call."""
        screen, terminal = os.openpty()
        self.addCleanup(os.close, screen)
        resize(terminal, 60)
        child = subprocess.Popen([PROGRAM, *arguments], stdout=terminal, stderr=subprocess.PIPE,
                                 env=self.environment)
        self.addCleanup(child.wait)
        self.addCleanup(child.kill)
        self.addCleanup(child.stderr.close)
        self.addCleanup(os.close, terminal)
        seen = bytearray()

        def shown():
            while select.select([screen], [], [], 0)[0]:
                seen.extend(os.read(screen, 4096))
            return seen.decode("utf-8", "replace").replace("\r\n", "\n")
        return child, terminal, shown

    def test_prints_a_line_with_the_reason_for_each_metric_on_a_terminal(self):
        self.store(layout("cpuUsage", "inputWatts"))
        child, _, shown = self.start_on_terminal("--timeout", "0.05")
        self.assertEqual(child.wait(30), 0)
        lines = shown().splitlines()
        self.assertEqual(len(lines), 2)
        self.assertTrue(lines[0].startswith("CPU · uso total "), lines)
        self.assertRegex(lines[1], "^Entrada · potência .não validada. +—  Fonte ainda não")
        for line in lines:
            self.assertLessEqual(len(line), 60)

    def test_prints_the_named_format_on_a_terminal(self):
        self.store(layout("inputWatts"))
        child, _, shown = self.start_on_terminal("--timeout", "0.05", "--format", "text")
        self.assertEqual(child.wait(30), 0)
        self.assertEqual(shown(), "—\n")

    def test_prints_the_list_into_a_pipe_where_it_is_asked_for(self):
        self.store(layout("inputWatts"))
        result = self.start("--timeout", "0.05", "--format", "list")
        self.assertEqual(result.stdout.decode(),
                         "Entrada · potência (não validada)  —  Fonte ainda não validada neste "
                         "computador\n")

    def test_draws_the_list_anew_when_the_terminal_has_another_size(self):
        self.store(layout("inputWatts"))
        child, terminal, shown = self.start_on_terminal("--follow")
        stage.until("the list", lambda: "potência" in shown())
        self.assertNotIn("\x1b[H", shown())
        resize(terminal, 40)
        # The program has no controlling terminal here, which would tell it.
        child.send_signal(signal.SIGWINCH)
        stage.until("the list in its new width", lambda: shown().endswith(
            "\x1b[H\x1b[J\x1b[2KEntrada · potência (não validada)  —  F…\x1b[J"))
        child.send_signal(signal.SIGINT)
        self.assertEqual(child.wait(30), 0)

    def test_refuses_bad_arguments_in_one_line(self):
        result = self.start("--format", "xml")
        self.assertEqual(result.returncode, 2)
        self.assertEqual(result.stdout, b"")
        self.assertEqual(result.stderr.count(b"\n"), 1)

    def test_ends_quietly_where_standard_output_is_closed(self):
        for arguments in [(), ("--follow",), ("--format", "json"), ("--help",)]:
            result = self.start(*arguments, stdout=None, preexec_fn=lambda: os.close(1))
            self.assertEqual((result.returncode, result.stderr), (0, b""), arguments)

    def test_prints_where_only_its_other_streams_are_closed(self):
        def close_others():
            os.close(0)
            os.close(2)
        result = self.start("--timeout", "0.05", preexec_fn=close_others)
        self.assertEqual(result.returncode, 0)
        self.assertEqual(result.stdout.count(b"\n"), 1)

    def test_ends_quietly_when_its_reader_leaves(self):
        read_end, write_end = os.pipe()
        os.close(read_end)
        try:
            result = self.start("--follow", stdout=write_end)
        finally:
            os.close(write_end)
        self.assertEqual((result.returncode, result.stderr), (0, b""))

    def test_goes_on_with_a_file_though_nobody_reads_its_standard_output(self):
        self.store(layout("cpuUsage"))
        gauges = self.home / "vantora.prom"
        read_end, write_end = os.pipe()
        os.close(read_end)
        process = subprocess.Popen(
            [PROGRAM, "--follow", "--format", "openmetrics", "--output", gauges],
            stdout=write_end, env=self.environment)
        os.close(write_end)
        stage.until("the second reading of the CPU",
                    lambda: gauges.exists() and "vantora_cpu_usage_ratio" in gauges.read_text())
        process.terminate()
        self.assertEqual(process.wait(stage.TIMEOUT), 0)

    def test_says_why_nothing_can_be_written(self):
        with open("/dev/full", "wb") as full:
            for arguments in [("--timeout", "0.05"), ("--follow",), ("--help",)]:
                result = self.start(*arguments, stdout=full)
                self.assertEqual(result.returncode, 1, arguments)
                self.assertIn("não foi possível escrever", result.stderr.decode())

    def test_never_waits_for_a_reader_that_does_not_read(self):
        for flags in [0, os.O_NONBLOCK]:
            read_end, write_end = os.pipe()
            fcntl.fcntl(write_end, fcntl.F_SETFL, os.O_NONBLOCK)
            try:
                while os.write(write_end, b"\n" * 4096):
                    pass
            except BlockingIOError:
                fcntl.fcntl(write_end, fcntl.F_SETFL, flags)
            result = self.start("--follow", "--timeout", "0.3", stdout=write_end)
            self.assertEqual((result.returncode, result.stderr), (0, b""))
            os.close(read_end)
            os.close(write_end)


unittest.main(verbosity=2)
