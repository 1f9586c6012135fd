#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Two machines in a real Prometheus: vantora-print writes the files, node_exporter serves them,
Prometheus is asked for the series. Everything on loopback, on ports that are free.

Usage: fleet_test.py VANTORA-PRINT RULES [-v]; prometheus, prometheus-node-exporter and promtool
are found in PATH.
"""

import json
import os
import signal
import socket
import subprocess
import sys
import unittest
import urllib.error
import urllib.parse
import urllib.request

import stage
from stage import until

PROGRAM = os.path.abspath(sys.argv.pop(1))
RULES = os.path.abspath(sys.argv.pop(1))


def free_port():
    with socket.socket() as probe:
        probe.bind(("127.0.0.1", 0))
        return probe.getsockname()[1]


class FleetTest(stage.StageTest):
    def textfile(self, machine):
        folder = os.path.join(self.folder, machine)
        os.makedirs(folder, exist_ok=True)
        return os.path.join(folder, "vantora.prom")

    def start_print(self, machine, **options):
        return self.start([PROGRAM, "--follow", "--format", "openmetrics",
                           "--output", self.textfile(machine)], **options)

    def start_exporter(self, machine):
        address = f"127.0.0.1:{free_port()}"
        self.start(["prometheus-node-exporter", "--collector.disable-defaults",
                    "--collector.textfile", "--web.listen-address=" + address,
                    "--collector.textfile.directory=" + os.path.dirname(self.textfile(machine))],
                   stderr=subprocess.DEVNULL)
        return address

    def start_prometheus(self, exporters):
        """`exporters`: addresses by machine."""
        targets = [{"targets": [address], "labels": {"instance": machine}}
                   for machine, address in exporters.items()]
        config = os.path.join(self.folder, "prometheus.json")  # JSON is YAML
        with open(config, "w", encoding="utf-8") as file:
            json.dump({"global": {"scrape_interval": "1s", "evaluation_interval": "1s"},
                       "rule_files": [RULES],
                       "scrape_configs": [{"job_name": "node", "static_configs": targets}]}, file)
        self.prometheus = f"127.0.0.1:{free_port()}"
        self.start(["prometheus", "--config.file=" + config,
                    "--storage.tsdb.path=" + os.path.join(self.folder, "tsdb"),
                    "--web.listen-address=" + self.prometheus], stderr=subprocess.DEVNULL)

    @staticmethod
    def dashboard_queries():
        with open(os.path.join(os.path.dirname(RULES), "grafana-dashboard.json"),
                  encoding="utf-8") as file:
            panels = json.load(file)["panels"]
        return [target["expr"].replace("$instance", ".*")
                for panel in panels for target in panel["targets"]]

    def ask(self, expression):
        address = (f"http://{self.prometheus}/api/v1/query?" +
                   urllib.parse.urlencode({"query": expression}))
        with urllib.request.urlopen(address, timeout=5) as answer:
            return json.load(answer)["data"]["result"]

    def query(self, expression):
        """The values of the expression by the series' labels."""
        try:
            result = self.ask(expression)
        except ConnectionError:  # it has not started yet
            return {}
        except urllib.error.URLError as error:
            if isinstance(error, urllib.error.HTTPError):
                raise
            return {}
        return {tuple(sorted(series["metric"].items())): float(series["value"][1])
                for series in result}

    def test_prometheus_has_the_readings_of_both_machines(self):
        tool = self.quota_tool("claude")
        self.configure(stage.QUOTAS[0], claudeSettings=stage.CLAUDE)
        tool.allow_answers()
        machines = ("laptop", "server")
        for machine in machines:
            self.start_print(machine)
        self.start_prometheus({machine: self.start_exporter(machine) for machine in machines})

        def values(name):
            return {dict(labels)["instance"]: value
                    for labels, value in self.query(name).items()}
        until("the usage of both", lambda: set(values("vantora_cpu_usage_ratio")) == set(machines))
        for value in values("vantora_cpu_usage_ratio").values():
            self.assertTrue(0 <= value <= 1, value)
        weekly = 'vantora_quota_used_ratio{assistant="claude",window="weekly"}'
        until("the quota", lambda: values(weekly) == {"laptop": 0.43, "server": 0.43})
        self.assertEqual(set(values("vantora_build_info").values()), {1})
        # Nothing is said of what this machine does not have.
        if not stage.has_battery():
            self.assertEqual(self.query("vantora_battery_charge_ratio"), {})
        for expression in self.dashboard_queries():
            self.ask(expression)  # which fails for one that Prometheus does not understand
        # node_exporter has found nothing to complain of in the files.
        self.assertEqual(set(values("node_textfile_scrape_error").values()), {0})

    def test_promtool_accepts_every_line(self):
        self.quota_tool("claude").allow_answers()
        self.configure(stage.QUOTAS[0], claudeSettings=stage.CLAUDE)
        printed = subprocess.run([PROGRAM, "--format", "openmetrics"], env=self.environment,
                                 capture_output=True, check=True, timeout=stage.TIMEOUT)
        self.assertIn(b"vantora_quota_used_ratio", printed.stdout)
        checked = subprocess.run(["promtool", "check", "metrics"], input=printed.stdout,
                                 capture_output=True, check=False)
        self.assertEqual((checked.returncode, checked.stdout, checked.stderr), (0, b"", b""))

    def test_the_rules_do_what_they_say(self):
        for command in (["check", "rules", RULES],
                        ["test", "rules", RULES.replace(".yml", "-test.yml")]):
            checked = subprocess.run(["promtool", *command], capture_output=True, check=False)
            self.assertEqual(checked.returncode, 0, checked.stdout + checked.stderr)

    def test_a_folder_that_is_away_is_said_once_and_tried_again(self):
        folder = os.path.dirname(self.textfile("laptop"))
        printer = self.start_print("laptop", stderr=subprocess.PIPE)
        self.configure(("cpuUsage", "download"))
        until("the file", lambda: os.path.exists(self.textfile("laptop")))
        os.rename(folder, folder + "-away")
        away = os.path.join(folder + "-away", "vantora.prom")
        with open(away, encoding="utf-8") as file:
            self.assertTrue(file.read().endswith("# EOF\n"))  # whole, as it was
        until("the complaint", lambda: "não foi possível escrever" in os.read(
            printer.stderr.fileno(), 4096).decode())
        os.rename(folder + "-away", folder)
        before = os.stat(self.textfile("laptop")).st_mtime_ns
        until("a newer file", lambda: os.stat(self.textfile("laptop")).st_mtime_ns > before)
        printer.send_signal(signal.SIGTERM)
        self.assertEqual(printer.wait(stage.TIMEOUT), 0)
        self.assertEqual(printer.stderr.read(), b"")
        self.assertFalse(os.path.exists(self.textfile("laptop")))


if __name__ == "__main__":
    unittest.main()
