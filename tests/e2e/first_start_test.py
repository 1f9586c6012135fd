#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The first start in an empty home, and the starts after one that ended badly.

    /usr/bin/python3 first_start_test.py VANTORA [-v]
"""

import os

import stage
from stage import until


class FirstStartTest(stage.StageTest):
    def test_shows_the_picture_and_writes_nothing_until_something_is_changed(self):
        self.start_bus()
        agent = self.start_agent().wait_until_owner()
        text = until("the readings", lambda: "uso total: —" not in agent.text() and agent.text())
        for name in ("upload", "download", "CPU"):
            self.assertIn(name, text)
        # No dashes of a battery that the machine does not have.
        self.assertEqual("Bateria" in text, stage.has_battery())
        width, height, drawn = agent.picture()
        self.assertGreaterEqual(width, height)
        self.assertGreater(drawn, 20)
        self.assertIn("Pausar", agent.menu())
        self.assertEqual(self.files(), [])

        agent.choose("Pausar")
        until("the other word", lambda: "Retomar" in agent.menu())
        until("the first document", lambda: self.saved()["paused"])
        self.assertEqual(agent.end(), 0)
        self.assertEqual(self.files(),
                         ["config", "config/Vantora", "config/Vantora/configuration.json"])
        for folder, mode in (("config/Vantora", 0o700),
                             ("config/Vantora/configuration.json", 0o600)):
            self.assertEqual(os.stat(os.path.join(self.home, folder)).st_mode & 0o777, mode)

    def test_keeps_every_module_of_the_default_in_the_first_document(self):
        self.start_bus()
        agent = self.start_agent().wait_until_owner()
        agent.choose("Pausar")
        until("the first document", lambda: self.saved()["paused"])
        self.assertEqual([(module["top"], module["enabled"]) for module in self.saved()["modules"]],
                         [("batteryPercent", stage.has_battery()), ("upload", True),
                          ("cpuUsage", True)])
        self.assertEqual(agent.end(), 0)

    def test_an_end_without_a_change_leaves_the_home_empty(self):
        self.start_bus()
        agent = self.start_agent().wait_until_owner()
        self.assertEqual(agent.end(), 0)
        self.assertEqual(self.files(), [])

    def test_an_agent_that_was_killed_leaves_nothing_that_blocks_the_next(self):
        self.start_bus()
        for _ in range(3):
            agent = self.start_agent().wait_until_owner()
            agent.kill()
            self.assertEqual(self.files(), [])
        agent = self.start_agent().wait_until_owner()
        self.assertGreater(agent.picture()[2], 20)
        self.assertEqual(agent.end(), 0)

    def test_an_agent_that_was_killed_in_the_midst_of_a_save_keeps_the_configuration(self):
        self.start_bus()
        self.configure(("cpuUsage", "none"))
        for paused in (True, False):
            agent = self.start_agent().wait_until_owner()
            agent.choose("Pausar" if paused else "Retomar")
            until("the saved pause", lambda wanted=paused: self.saved()["paused"] == wanted)
            agent.kill()
            self.assertEqual(len(self.saved()["modules"]), 1)
        agent = self.start_agent().wait_until_owner()
        self.assertIn("Pausar", agent.menu())
        self.assertEqual(agent.end(), 0)

    def test_a_configuration_that_cannot_be_read_is_told_and_kept(self):
        self.start_bus()
        self.write("Vantora/configuration.json", {"schemaVersion": 7})
        agent = self.start_agent().wait_until_owner()
        self.assertIn("CPU", agent.text())
        self.assertEqual(len(agent.said()), 1)
        self.assertRegex(
            agent.said()[0],
            "^vantora: Configuração inválida preservada em disco; padrão carregado. Na primeira "
            "gravação, ela será guardada em /.*/Vantora/configuration.unreadable.json.$")
        self.assertEqual(agent.end(), 0)
        self.assertEqual(self.saved(), {"schemaVersion": 7})

    def test_says_when_it_may_open_too_few_files(self):
        # A leak checker could not open what it reads.
        self.environment["ASAN_OPTIONS"] = "detect_leaks=0"
        for limit in range(4, 19):
            agent = stage.Agent(self, "/usr/bin/prlimit", f"--nofile={limit}", self.program)
            self.assertEqual(agent.process.wait(stage.TIMEOUT), 1)
            self.assertEqual(agent.said(), [
                "vantora: não é possível iniciar: o limite de arquivos abertos do processo é baixo "
                "demais (ulimit -n)"])


if __name__ == "__main__":
    stage.main()
