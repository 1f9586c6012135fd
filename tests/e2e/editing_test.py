#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The configuration edited in the real settings window, through the accessibility bus, while
a quota query runs.

    /usr/bin/python3 editing_test.py VANTORA [-v]
"""

import stage
import window_stage
from stage import until


class EditingTest(window_stage.WindowTest):
    def set_width(self, window, width):
        field = window.find("spin button", lambda name: name.startswith("Largura, módulo 1 ("))
        self.atspi.Value.set_current_value(field, width)
        until("the width saved", lambda: self.saved()["modules"][0]["width"] == width)

    def test_a_query_goes_on_while_its_settings_stay_and_ends_with_them(self):
        tool = self.quota_tool("claude")
        self.configure(stage.QUOTAS[0], claudeSettings=stage.CLAUDE)
        agent = self.start_agent().wait_until_owner()
        first = tool.wait_for_start()
        window = self.open_window(agent)

        # Edits that are nothing to the query, and one of how its answer is shown.
        window.press("push button", lambda name: name.startswith("Editar, módulo 1 ("))
        self.set_width(window, 77)
        window.tab("Claude")
        window.find("label", "Estado: Consultando os limites pelo Claude Code.")
        window.press("check box", "Uma casa decimal")
        until("the decimals saved", lambda: self.saved()["claudeSettings"]["oneDecimal"])
        self.assertEqual(tool.started(), [first])
        self.assertTrue(stage.is_running(first))

        # The integration ends, and with it the query that runs.
        window.press("check box", "Ativar integração Claude")
        until("the end of the query", lambda: not stage.is_running(first))
        until("the item's word", lambda: "janela de 5 horas (%): OFF" in agent.text())
        window.find("label", "Estado: Integração desativada.")
        until("the switch saved", lambda: not self.saved()["claudeSettings"]["enabled"])
        until("the end of the guard", lambda: len(agent.guards()) == 1)  # the window's stays

        # It comes back, is edited around again, and its answer arrives.
        window.press("check box", "Ativar integração Claude")
        second = tool.wait_for_start(2)
        window.tab("Módulos")
        self.set_width(window, 99)
        window.tab("Claude")
        window.press("check box", "Mostrar percentual utilizado")
        until("the share saved", lambda: not self.saved()["claudeSettings"]["showUsed"])
        self.assertEqual(tool.started(), [first, second])
        self.assertTrue(stage.is_running(second))
        tool.allow_answers()
        until("the answer in the item",
              lambda: "cota semanal (%): 57.0%; Claude · janela de 5 horas (%): 79.0%"
              in agent.text())
        window.find("label",
                    "Estado: Limites do Claude (semanal e 5 horas) consultados com sucesso.")
        until("the end of the query", lambda: not stage.is_running(second))
        self.assertEqual(len(tool.started()), 2)

        child = window.application().get_process_id()
        self.assertEqual(agent.end(), 0)
        until("the window's end", lambda: not stage.is_running(child))


if __name__ == "__main__":
    window_stage.main()
