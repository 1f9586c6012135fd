#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""The whole agent on a machine that sleeps and wakes: logind is a mock on a bus of the
test's own, the quota tools are the test's.

    /usr/bin/python3 sleep_test.py VANTORA [-v]
"""

import time

import stage
from stage import until


class SleepTest(stage.StageTest):
    def start_everything(self, manner):
        self.start_bus()
        self.start_logind()
        tools = [self.quota_tool("claude", manner), self.quota_tool("codex", manner)]
        self.configure(("cpuUsage", "download"), *stage.QUOTAS,
                       claudeSettings=stage.CLAUDE, codexSettings=stage.CODEX)
        agent = self.start_agent().wait_until_owner()
        until("the lock", self.holds_sleep)
        for tool in tools:
            tool.wait_for_start()
        return agent, tools

    def fall_asleep(self):
        self.tell_sleep(True)
        # Let go of once nothing samples any more.
        until("the lock let go of", lambda: not self.holds_sleep())

    def test_sleep_stops_everything_and_wake_starts_it_again(self):
        agent, tools = self.start_everything("patient")
        until("a rate", lambda: "uso total: —" not in agent.text())
        asked = [tool.started()[0] for tool in tools]
        self.fall_asleep()
        until("the end of the queries", lambda: not any(map(stage.is_running, asked)))
        self.assertIn("janela de 5 horas (%): OFF", agent.text())
        self.assertIn("tempo até renovar: OFF", agent.text())
        # Awake it would have sampled three times.
        before = stage.switches(agent.pid)
        time.sleep(3)
        self.assertLessEqual(stage.switches(agent.pid) - before, 2)
        self.assertEqual([len(tool.started()) for tool in tools], [1, 1])

        self.tell_sleep(False)
        until("a new lock", self.holds_sleep)
        for tool in tools:
            tool.wait_for_start(2)
            tool.allow_answers()
        until("the answers", lambda: "cota semanal (%): 43%" in agent.text()
              and "cota semanal (%): 37%" in agent.text())
        until("a rate", lambda: "uso total: —" not in agent.text())
        self.assertEqual(agent.end(), 0)

    def test_tools_that_ignore_the_request_end_in_sleep_all_the_same(self):
        agent, tools = self.start_everything("stubborn")
        until("the grandchildren", lambda: all(tool.grandchildren() for tool in tools))
        family = [pid for tool in tools for pid in tool.started() + tool.grandchildren()]
        self.fall_asleep()
        until("the end of the tools", lambda: not any(map(stage.is_running, family)))
        until("the end of the children", lambda: agent.children() == [])
        until("the end of the guards", lambda: agent.guards() == [])
        self.assertEqual(agent.end(), 0)

    def test_a_second_sleep_is_waited_for_as_the_first(self):
        agent, tools = self.start_everything("patient")
        for count in (1, 2):
            started = tools[0].wait_for_start(count)
            self.fall_asleep()
            until("the end of the query", lambda pid=started: not stage.is_running(pid))
            self.tell_sleep(False)
            until("a new lock", self.holds_sleep)
        tools[0].wait_for_start(3)
        self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    stage.main()
