# SPDX-License-Identifier: MIT
"""The agent's life: clicks, the menu, the settings window, a second start, the end."""

import json
import os
import signal
import sys
import time
import unittest

from stage import PATIENCE, Test, at_rest, sampling, terminate, until
from picture_test import settled

SETTINGS, PAUSE, RESUME, QUIT = "Configurações…", "Pausar", "Retomar", "Sair"
LOGIN = "https://auth.openai.com/oauth/authorize?state=a"


class TheMenu(Test):
    def open_menu(self, agent):
        agent.ask("right")
        return agent.until("the menu", lambda state: state["menu"])["menu"]

    def choose(self, agent, title):
        self.assertTrue(agent.ask(f"choose {title}"), f"no entry {title} to choose")
        agent.until("the menu's end", lambda state: not state["menu"] and not state["item"]["hasMenu"])

    def test_has_its_words_in_their_order_and_every_one_works(self):
        agent = self.agent()
        settled(agent)
        menu = self.open_menu(agent)
        self.assertEqual([entry["title"] for entry in menu], [SETTINGS, PAUSE, QUIT])
        self.assertTrue(all(entry["enabled"] for entry in menu))
        self.choose(agent, PAUSE)
        agent.until("stale readings", lambda state: at_rest(state)
                    and "uso total: —" in state["item"]["label"])
        menu = self.open_menu(agent)
        self.assertEqual([entry["title"] for entry in menu], [SETTINGS, RESUME, QUIT])
        self.choose(agent, RESUME)
        settled(agent)
        self.open_menu(agent)
        self.choose(agent, SETTINGS)
        until("the window", lambda: "configuration" in self.window_shows())
        self.open_menu(agent)
        self.assertTrue(agent.ask(f"choose {QUIT}"))
        self.ended(agent)

    def test_is_of_one_click_alone(self):
        agent = self.agent()
        self.open_menu(agent)
        self.choose(agent, "")
        self.open_window(agent)
        self.assertIsNone(agent.state()["menu"])

    def test_lets_readings_come_while_it_is_open(self):
        agent = self.agent()
        settled(agent)
        self.open_menu(agent)
        agent.ask("set busy 77")
        agent.until("the reading", lambda state: "77%" in state["item"]["label"])
        self.assertIsNotNone(agent.state()["menu"])
        self.choose(agent, "")


class TheWindow(Test):
    def test_opens_on_a_left_click_and_comes_to_the_front(self):
        agent = self.agent()
        settled(agent)
        self.open_window(agent)
        self.assertEqual(agent.state()["activations"],
                         ["activate", "yield local.vantora.Vantora.settings"])
        agent.ask("left")
        until("the second click's word",
              lambda: any(message["type"] == "raise" for message in self.window_states()))
        self.assertEqual(len(agent.state()["activations"]), 4)
        picture = self.window_shows()["picture"]
        self.assertEqual(picture["rows"], 44)
        self.assertEqual(picture["columns"], 2 * picture["width"])
        agent.ask("quit")
        self.ended(agent)

    def test_is_let_to_the_front_where_the_system_has_no_yielding(self):
        agent = self.agent(environment={"STAND_IN_SYSTEM": "13"})
        self.open_window(agent)
        self.assertEqual(agent.state()["activations"], ["activate ignoring others"])
        agent.ask("quit")
        self.ended(agent)

    def test_opens_for_a_press_without_a_click(self):
        agent = self.agent()
        agent.ask("press")
        until("the window", lambda: "configuration" in self.window_shows())

    def test_opens_again_on_reopen_but_not_within_three_seconds_of_the_start(self):
        agent = self.start("Vantora")
        began = time.monotonic()
        first = agent.ask("reopen")
        if time.monotonic() - began < 2.5:  # a machine that is not too slow
            self.assertFalse(first)
            self.assertEqual(self.window_notes(), [])
        until("the end of the grace period", lambda: agent.ask("reopen"))
        self.assertGreaterEqual(time.monotonic() - began, 2.5)
        until("the window", lambda: "configuration" in self.window_shows())

    def test_puts_an_edit_in_force_at_once(self):
        agent = self.agent()
        settled(agent)
        self.open_window(agent)
        configuration = dict(self.window_shows()["configuration"], intervalSeconds=1)
        self.window_says({"type": "configuration", "revision": 1, "configuration": configuration})
        agent.until("the other interval",
                    lambda state: [timer["interval"] for timer in sampling(state)] == [1.0])
        path = os.path.join(self.support, "configuration.json")
        until("the saved file", lambda: os.path.exists(path))

    def test_that_is_not_there_says_so_and_the_agent_goes_on(self):
        os.remove(os.path.join(self.bundle,
                               "Helpers/vantora-settings.app/Contents/MacOS/vantora-settings"))
        agent = self.agent()
        agent.ask("left")
        until("the complaint", lambda: "vantora:" in agent.said())
        settled(agent)
        agent.ask("quit")
        self.ended(agent)


class TheLoginItem(Test):
    def ask_for(self, agent, enabled, notice, status):
        self.window_says({"type": "startAtLogin", "enabled": enabled})
        until(notice, lambda: self.window_shows().get("notice") == notice
              and self.window_shows()["loginItemStatus"] == status)

    def test_says_what_the_system_says(self):
        agent = self.agent()
        self.open_window(agent)
        self.assertEqual(self.window_shows()["loginItemStatus"], "notRegistered")
        self.ask_for(agent, True, "Vantora iniciará ao entrar na sessão do Mac.", "enabled")
        self.ask_for(agent, False, "Início automático desativado.", "notRegistered")
        agent.ask("set loginAnswer asks")
        self.ask_for(agent, True, "Aprovação pendente em Ajustes do Sistema → Itens de Início.",
                     "requiresApproval")
        agent.ask("set loginAnswer refuses")
        self.ask_for(agent, True, "Falha ao ajustar início automático: Operação não permitida",
                     "requiresApproval")
        agent.ask("set loginStatus 3")
        agent.ask("left")
        until("a status that is not found",
              lambda: self.window_shows()["loginItemStatus"] == "notFound")
        agent.ask("set loginStatus 17")  # one of a later system
        agent.ask("left")
        until("a status like none", lambda: self.window_shows()["loginItemStatus"] == "notRegistered")


class TheBrowser(Test):
    def test_opens_the_address_of_the_login(self):
        tool = os.path.join(self.home, "codex")
        with open(tool, "w", encoding="utf-8") as script:
            script.write(f"#!{sys.executable} -S\n" + CODEX)
        os.chmod(tool, 0o755)
        agent = self.agent()
        self.open_window(agent)
        self.window_says({"type": "selectCodexExecutable", "path": tool})
        until("the choice", lambda: self.window_shows().get("notice")
              == "Executável Codex selecionado para este Mac.")
        configuration = self.window_shows()["configuration"]
        configuration["codexSettings"] = {
            "enabled": True, "intervalMinutes": 3, "showUsed": False, "oneDecimal": False,
            "showResetDate": False}
        configuration["modules"][0].update(top="codexWeeklyPercent", bottom="codexWeeklyReset")
        self.window_says({"type": "configuration", "revision": 1, "configuration": configuration})
        until("the first answer", lambda: "LOGIN" in agent.state()["item"]["label"])
        self.window_says({"type": "connectCodex"})
        state = agent.until("the browser", lambda state: state["opened"])
        self.assertEqual(state["opened"], [LOGIN])
        agent.ask("quit")
        self.ended(agent)


# A command-line assistant without a login.
CODEX = f"""
import json, sys
for line in sys.stdin:
    request = json.loads(line)
    if "id" not in request:
        continue
    answers = {{"account/read": {{"account": None}}, "account/login/start": {{
        "type": "chatgpt", "loginId": "7", "authUrl": "{LOGIN}"}}}}
    print(json.dumps({{"id": request["id"], "result": answers.get(request["method"], {{}})}}),
          flush=True)
"""


class ASecondStart(Test):
    def test_passes_its_wish_on_and_ends(self):
        first = self.agent()
        began = time.monotonic()
        until("the end of the grace period", lambda: time.monotonic() - began > 3)
        # It waits for an answer, which the first may be long in giving on a busy machine.
        second = self.start("Vantora", environment={"STAND_IN_TIME_FACTOR": "20"})
        self.assertEqual(second.process.wait(PATIENCE), 0, second.said())
        self.assertIn("foi passado adiante", second.said())
        until("the window of the first", lambda: "configuration" in self.window_shows())
        first.ask("quit")
        self.ended(first)

    def test_says_that_the_first_does_not_answer(self):
        first = self.agent()
        os.kill(first.process.pid, signal.SIGSTOP)
        second = self.start("Vantora")
        self.assertEqual(second.process.wait(PATIENCE), 1, second.said())
        self.assertIn("não responde", second.said())
        os.kill(first.process.pid, signal.SIGCONT)

    def test_takes_over_once_the_first_has_died(self):
        first = self.agent()
        first.kill()
        self.agent()


class TheEnd(Test):
    def test_comes_with_a_signal(self):
        agent = self.agent()
        settled(agent)
        self.open_window(agent)
        terminate(agent)
        self.ended(agent)

    def test_comes_in_the_middle_of_an_open_menu(self):
        agent = self.agent()
        agent.ask("right")
        agent.until("the menu", lambda state: state["menu"])
        terminate(agent)
        self.ended(agent)

    def test_comes_when_the_system_asks(self):
        agent = self.agent()
        # Everything has begun: timers, the activity, connections.
        settled(agent)
        agent.ask("quit")
        self.ended(agent)

    def test_comes_at_once_without_a_folder_for_the_configuration(self):
        agent = self.start("Vantora", environment={"STAND_IN_NO_FOLDERS": "1"})
        self.assertEqual(agent.process.wait(PATIENCE), 1)
        self.assertIn("Application Support", agent.said())


class Print(Test):
    def test_prints_lines_and_gives_everything_back(self):
        program = self.start("vantora-print", "--follow")
        until("a line of readings", lambda: b"47" in program.process.stdout.readline())
        terminate(program)
        self.assertEqual(program.end(), 0, program.said())
        self.assertNotIn("stand-in:", program.said())

    def test_asks_no_bar_for_clicks_that_it_does_not_read(self):
        program = self.start("vantora-print", "--follow", "--format", "i3bar")
        header = program.process.stdout.readline()
        terminate(program)
        self.assertEqual(program.end(), 0, program.said())
        self.assertEqual(json.loads(header), {"version": 1})

    def test_prints_once_and_ends(self):
        program = self.start("vantora-print")
        line = program.process.stdout.readline().decode()
        self.assertIn("47°C", line)
        self.assertEqual(program.end(), 0, program.said())

    def test_says_what_it_lacks(self):
        program = self.start("vantora-print", environment={"STAND_IN_NO_FOLDERS": "1"})
        self.assertEqual(program.process.wait(PATIENCE), 1)
        self.assertIn("Application Support", program.said())


class Diagnose(Test):
    def diagnose(self, program, *arguments):
        asked = self.start(program, "--diagnose", *arguments)
        said = asked.process.stdout.read().decode()
        self.assertEqual(asked.end(), 0, asked.said())
        self.assertNotIn("stand-in:", asked.said())
        return said

    def test_says_which_readings_there_are_and_why_others_are_not(self):
        for program in ("Vantora", "vantora-print"):
            said = self.diagnose(program)
            self.assertIn("CPU · maior temperatura (SMC experimental)", said)
            self.assertIn("en0             Rede · upload, download\n", said)
            self.assertIn("Adaptador sem potência informada", said)
            self.assertIn("nenhum em execução", said)
            for line in said.splitlines():
                self.assertLessEqual(len(line), 100, line)

    def test_knows_that_an_agent_runs_and_leaves_it_alone(self):
        agent = self.agent()
        settled(agent)
        document = json.loads(self.diagnose("vantora-print", "--json"))
        self.assertEqual(document["agent"]["presence"], "running")
        self.assertEqual(document["configuration"]["state"], "absent")
        self.assertTrue(document["configuration"]["path"].startswith("~/Library/"))
        agent.ask("quit")
        self.ended(agent)

    def test_takes_json_alone_beside_it(self):
        asked = self.start("Vantora", "--diagnose", "--follow")
        self.assertEqual(asked.process.wait(PATIENCE), 2)
        self.assertIn("só aceita --json", asked.said())


if __name__ == "__main__":
    unittest.main()
