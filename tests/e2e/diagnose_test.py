#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""vantora --diagnose and vantora-print --diagnose: with an agent, without one, with one that
hangs, without a bus, on a laptop and on a machine full of serial numbers and addresses.

    /usr/bin/python3 diagnose_test.py VANTORA [-v]

Needs a mount namespace for the machines; those tests are skipped where the system refuses one.
"""

import json
import os
import re
import signal
import socket
import subprocess
import sys
import time
import unittest

import jsonschema
import stage
from session.machine import Machine, isolated
from stage import until

ISOLATED = "VANTORA_E2E_ISOLATED"
SCHEMA = os.path.join(os.path.dirname(os.path.abspath(__file__)),
                      "../../docs/vantora-diagnose.schema.json")
ADDRESS = re.compile(r"(?:[0-9a-f]{2}[:_-]){5}[0-9a-f]{2}|\b[0-9a-f]{12}\b|"
                     r"\b[0-9]{1,3}(?:\.[0-9]{1,3}){3}\b|[\w.+-]+@[\w-]+\.[a-z]+", re.I)


class DiagnoseTest(stage.StageTest):
    def setUp(self):
        super().setUp()
        self.printer = os.path.join(os.path.dirname(self.program), "vantora-print")
        with open(SCHEMA, encoding="utf-8") as file:
            schema = json.load(file)
        jsonschema.Draft202012Validator.check_schema(schema)
        self.validator = jsonschema.Draft202012Validator(schema)

    def run_program(self, program, *arguments):
        return subprocess.run([program, *arguments], env=self.environment, capture_output=True,
                              timeout=stage.TIMEOUT, check=False)

    def text(self, program=None):
        result = self.run_program(program or self.printer, "--diagnose")
        self.assertEqual((result.returncode, result.stderr.decode()), (0, ""))
        text = result.stdout.decode()
        for line in text.splitlines():
            self.assertLessEqual(len(line), 100, line)
        # As one wraps it: reasons are found whole.
        self.flat = re.sub(r"\s+", " ", text)
        return text

    def document(self, program=None):
        result = self.run_program(program or self.printer, "--diagnose", "--json")
        self.assertEqual((result.returncode, result.stderr.decode()), (0, ""))
        self.assertEqual(result.stdout.count(b"\n"), 1)
        document = json.loads(result.stdout)
        self.validator.validate(document)
        return document

    def start_panel(self):
        """A watcher with a host, in a process whose name no table knows."""
        path = os.path.join(os.path.dirname(os.path.abspath(__file__)), "watcher.py")
        self.start(["/usr/bin/python3", "-W", "ignore", path,
                    os.path.join(self.folder, "registered")])

    def mount(self, description, add=()):
        if os.environ.get(ISOLATED) != "1":
            self.skipTest("this system refuses mount namespaces")
        machine = Machine(os.path.join(self.folder, "class"), description)
        self.assertIsNone(machine.mount())
        self.addCleanup(machine.unmount)
        for device, attributes in add:
            folder = machine.folder / device
            folder.mkdir(parents=True, exist_ok=True)
            for name, value in attributes.items():
                (folder / name).write_text(f"{value}\n", encoding="utf-8")
        return machine

    def test_looks_by_itself_where_there_is_nobody_to_ask(self):
        for program in (self.program, self.printer):
            self.text(program)
            self.assertIn("sem o barramento da sessão não há como perguntar", self.flat)
            self.assertIn("nenhuma, porque sem o barramento da sessão não há painel", self.flat)
            document = self.document(program)
            self.assertEqual(document["program"], os.path.basename(program))
            self.assertEqual(document["agent"]["presence"], "noBus")
            self.assertEqual(len(document["readings"]), 12)
            self.assertTrue(document["typefaces"]["text"] or document["typefaces"]["why"])
            self.assertLessEqual({"libuv", "FreeType", "fontconfig"}, set(document["libraries"]))
        self.assertEqual(self.files(), [], "it writes nothing")

    def test_says_that_no_agent_runs_and_starts_none(self):
        self.start_bus()
        self.assertEqual(self.document()["agent"]["presence"], "none")
        self.assertIn("nenhum em execução nesta sessão", self.text())
        self.assertIsNone(self.owner())

    def test_asks_the_running_agent(self):
        self.start_bus()
        self.configure(("cpuUsage", "fan1RPM"), *stage.QUOTAS, codexSettings=stage.CODEX,
                       claudeSettings=stage.CLAUDE)
        agent = self.start_agent().wait_until_owner()
        until("a reading", lambda: agent.reading("CPU") not in (None, "—"))
        document = self.document()
        self.assertEqual(document["agent"]["presence"], "answered")
        self.assertRegex(document["agent"]["shown"], r"^[0-9]+% ")
        self.assertEqual(document["item"]["form"], "nenhuma")
        self.assertEqual(document["item"]["formWhy"],
                         "nenhum painel desta sessão mostra itens")
        for assistant in document["assistants"]:
            self.assertIsNone(assistant["path"])
            self.assertEqual(assistant["quota"]["status"], "dependencyMissing")
        self.text(self.program)
        self.assertIn("em execução (", self.flat)
        self.assertEqual(self.owner(), agent.pid, "the one that asks takes no name")
        self.assertEqual(agent.end(), 0)

    def test_says_why_a_square_is_shown(self):
        self.start_bus()
        self.configure(("cpuUsage", "none"))
        self.start_panel()
        agent = self.start_agent().wait_until_owner()
        until("the item in the panel", lambda: "está no painel" in " ".join(agent.said()))
        self.text()
        self.assertIn("painel desconhecido (processo python3", self.flat)
        self.assertIn("quadrado com um módulo, porque o painel não é conhecido, e um quadrado cabe "
                      "em qualquer um", self.flat)
        self.assertEqual(agent.end(), 0)
        # And without the agent, what one would show.
        self.text()
        self.assertIn("forma prevista quadrado com um módulo, porque", self.flat)

    def test_does_not_wait_for_an_agent_that_hangs(self):
        self.start_bus()
        agent = self.start_agent().wait_until_owner()
        agent.process.send_signal(signal.SIGSTOP)
        begun = time.monotonic()
        self.assertEqual(self.document()["agent"]["presence"], "silent")
        self.assertLess(time.monotonic() - begun, 15)
        agent.process.send_signal(signal.SIGCONT)
        self.assertEqual(agent.end(), 0)

    def test_tells_of_a_broken_configuration_and_leaves_it_alone(self):
        self.write("Vantora/configuration.json", {"schemaVersion": 7})
        document = self.document()
        self.assertEqual(document["configuration"]["state"], "invalid")
        self.assertEqual(document["configuration"]["path"], "~/config/Vantora/configuration.json")
        self.assertEqual(document["backup"]["state"], "absent")
        self.text()
        self.assertIn("configuration.json: não é uma configuração que possa ser usada", self.flat)
        self.assertEqual(self.saved(), {"schemaVersion": 7})

    def test_tells_an_assistants_version_without_a_query(self):
        path = os.path.join(self.home, ".local/bin/claude")
        os.makedirs(os.path.dirname(path))
        noted = os.path.join(self.folder, "noted")
        with open(path, "w", encoding="utf-8") as script:
            script.write(f'#!/bin/sh\necho "$@" >> {noted}\necho "2.0.50 (Claude Code)"\n')
        os.chmod(path, 0o755)
        claude = self.document()["assistants"][1]
        self.assertEqual((claude["path"], claude["version"]), ("~/.local/bin/claude", "2.0.50"))
        with open(noted, encoding="utf-8") as notes:
            self.assertEqual(notes.read(), "--version\n")
        self.text()
        self.assertIn("~/.local/bin/claude, versão 2.0.50", self.flat)

    def test_does_not_wait_for_an_assistant_that_says_no_version(self):
        self.quota_tool("claude", "patient")
        begun = time.monotonic()
        claude = self.document()["assistants"][1]
        self.assertIsNone(claude["version"])
        self.assertLess(time.monotonic() - begun, 15)

    def test_says_on_a_laptop_what_each_sensor_feeds(self):
        self.mount("thinkpad-t440s")
        document = self.document()
        feeds = {}
        for sensor in document["sensors"]["devices"]:
            feeds.setdefault(sensor["name"], set()).update(sensor["feeds"])
        self.assertEqual(feeds, {"coretemp": {"cpuTemperature"}, "thinkpad": {"fan1RPM"},
                                 "acpitz": set()})
        supplies = {each["name"]: each for each in document["supplies"]["devices"]}
        self.assertIn("batteryPercent", supplies["BAT0"]["feeds"])
        self.assertEqual(supplies["AC"]["why"], "não está conectado")
        readings = {each["metric"]: each for each in document["readings"]}
        self.assertEqual(readings["cpuTemperature"]["text"], "49°C")
        self.assertEqual(readings["fan2RPM"]["source"], "Ventoinha 2 não existe nesta máquina")
        self.assertLessEqual(len(self.text().splitlines()), 40)

    def test_shows_no_serial_number_address_or_name_of_the_user(self):
        secrets = ["a0:ab:51:33:fe:01", "A0-AB-51-33-FE-02", "0018A4C77E31", "SN4711-0815"]
        self.mount("thinkpad-t440s", add=[
            (f"power_supply/sony_controller_battery_{secrets[0]}",
             {"type": "Battery", "scope": "System", "capacity": 50, "serial_number": secrets[3]}),
            (f"power_supply/ps-controller-battery-{secrets[1]}",
             {"type": "Battery", "scope": "Device", "capacity": 50}),
            (f"power_supply/hid-{secrets[2]}.0003-battery", {"type": "Battery", "capacity": 50}),
            ("power_supply/BAT0", {"serial_number": secrets[3], "manufacturer": "SANYO"}),
        ])
        self.environment["XDG_CURRENT_DESKTOP"] = "maria.silva@exemplo.com.br"
        self.environment["XDG_SESSION_DESKTOP"] = secrets[3]
        path = os.path.join(self.home, ".local/bin/codex")
        os.makedirs(os.path.dirname(path))
        os.symlink("/bin/true", path)
        self.start_bus()
        self.configure(("batteryPercent", "none"))
        agent = self.start_agent().wait_until_owner()
        outputs = [self.text(), json.dumps(self.document(), ensure_ascii=False)]
        for output in outputs:
            without_version = output.replace(self.document()["session"]["system"], "")
            self.assertNotRegex(without_version, ADDRESS)
            for secret in [*secrets, self.home, "maria.silva", "SN4711"]:
                self.assertNotIn(secret, output)
            if len(socket.gethostname()) > 4:
                self.assertNotIn(socket.gethostname(), output)
            self.assertIn("BAT0", output)
            self.assertIn("~/", output)
        self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    isolated([sys.executable, "-W", "ignore", *sys.argv], ISOLATED, network=False)
    stage.main()
