#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""No child outlives the agent, however it ends and whatever the child ignores; and what a
child is given.

    /usr/bin/python3 children_test.py VANTORA [-v]
"""

import os
import shutil
import signal
import unittest

import stage
from stage import until


class ChildrenTest(stage.StageTest):
    def start_stubborn(self):
        """An agent with tools that ignore everything, and all their processes."""
        self.bus = self.start_bus()
        tools = [self.quota_tool(kind, "stubborn") for kind in ("claude", "codex")]
        self.configure(*stage.QUOTAS, claudeSettings=stage.CLAUDE, codexSettings=stage.CODEX)
        agent = self.start_agent().wait_until_owner()
        for tool in tools:
            tool.wait_for_start()
            until("the grandchild", tool.grandchildren)
        family = [pid for tool in tools for pid in tool.started() + tool.grandchildren()]
        self.assertEqual(len(family), 4)
        self.assertTrue(all(map(stage.is_running, family)))
        return agent, family

    def assert_nothing_is_left(self, agent, family):
        # They are given a quarter of a second.
        until("the end of the children", lambda: not any(map(stage.is_running, family)),
              limit=8)
        until("the end of the guards", lambda: agent.guards() == [])

    def test_sigterm_ends_the_agent_and_all_of_them(self):
        agent, family = self.start_stubborn()
        self.assertEqual(agent.end(), 0)
        self.assert_nothing_is_left(agent, family)

    def test_the_menus_quit_ends_all_of_them(self):
        agent, family = self.start_stubborn()
        agent.choose("Sair")
        self.assertEqual(agent.process.wait(stage.TIMEOUT), 0)
        self.assert_nothing_is_left(agent, family)

    def test_a_killed_agent_leaves_none_of_them(self):
        agent, family = self.start_stubborn()
        agent.kill()
        self.assert_nothing_is_left(agent, family)

    def test_a_session_that_ends_impatiently_leaves_none_of_them(self):
        # As a service manager ends a session: every process is asked to end, the bus
        # goes away, and what still runs is killed: here the agent alone, while it ends.
        agent, family = self.start_stubborn()
        processes = [agent.pid] + agent.guards() + family
        self.stop_bus(self.bus)
        for pid in processes:
            os.kill(pid, signal.SIGTERM)
        agent.kill()
        self.assert_nothing_is_left(agent, family)

    def test_an_agent_without_its_bus_ends_them_as_well(self):
        agent, family = self.start_stubborn()
        self.stop_bus(self.bus)
        until("the line", agent.said)
        self.assertTrue(all(map(stage.is_running, family)))
        self.assertEqual(agent.end(), 0)
        self.assert_nothing_is_left(agent, family)

    def test_hangup_and_interrupt_end_it_as_well(self):
        for number in (signal.SIGHUP, signal.SIGINT):
            with self.subTest(number=number):
                self.setUp()
                agent, family = self.start_stubborn()
                agent.process.send_signal(number)
                self.assertEqual(agent.process.wait(stage.TIMEOUT), 0)
                self.assert_nothing_is_left(agent, family)

    def test_there_is_a_guard_for_each_running_child_and_none_besides(self):
        self.start_bus()
        tool = self.quota_tool("claude")
        self.configure(stage.QUOTAS[0], claudeSettings=stage.CLAUDE)
        agent = self.start_agent().wait_until_owner()
        tool.wait_for_start()
        self.assertEqual(len(agent.guards()), 1)
        tool.allow_answers()
        until("the answer", lambda: "cota semanal (%): 43%" in agent.text())
        until("the end of the guard", lambda: agent.guards() == [])
        self.assertEqual(agent.children(), [])
        self.assertEqual(agent.end(), 0)

    def test_children_are_not_given_the_launchers_tokens(self):
        self.start_bus()
        tool = self.quota_tool("claude")
        self.configure(stage.QUOTAS[0], claudeSettings=stage.CLAUDE)
        self.environment["XDG_ACTIVATION_TOKEN"] = "token-of-the-launcher"
        self.environment["DESKTOP_STARTUP_ID"] = "id-of-the-launcher"
        # A window's program that only notes what it is given, where the agent looks for it.
        noted = os.path.join(self.folder, "noted")
        window = os.path.join(self.folder, "vantora-settings")
        with open(window, "w", encoding="utf-8") as script:
            script.write(f"#!/bin/sh\nenv > {noted}.new\nmv {noted}.new {noted}\ncat > /dev/null\n")
        os.chmod(window, 0o755)
        agent = stage.Agent(self, shutil.copy(self.program, self.folder)).wait_until_owner()
        tool.wait_for_start()
        given = tool.environment()
        self.assertEqual(given["HOME"], self.home)
        self.assertNotIn("XDG_ACTIVATION_TOKEN", given)
        self.assertNotIn("DESKTOP_STARTUP_ID", given)
        agent.click()
        until("the window's program", lambda: os.path.exists(noted))
        with open(noted, encoding="utf-8") as lines:
            given = dict(line.split("=", 1) for line in lines.read().splitlines())
        self.assertEqual(given.get("XDG_ACTIVATION_TOKEN", ""), "")
        self.assertEqual(given.get("DESKTOP_STARTUP_ID", ""), "")


@unittest.skipUnless(shutil.which("Xvfb"), "Xvfb is not installed")
class WindowTest(stage.StageTest):
    def start_with_window(self):
        if not self.has_window_program():
            self.skipTest("the window was not built")
        self.start_display()
        self.start_bus()
        self.configure(("cpuUsage", "none"))
        agent = self.start_agent().wait_until_owner()
        agent.click()
        until("the window", lambda: self.windows("Configurações do Vantora"))
        (window,) = agent.children()
        return agent, window

    def test_ends_with_an_agent_that_is_asked_to_end(self):
        agent, window = self.start_with_window()
        self.assertEqual(agent.end(), 0)
        until("the end of the window", lambda: not stage.is_running(window))

    def test_ends_with_an_agent_that_is_killed(self):
        agent, window = self.start_with_window()
        agent.kill()
        until("the end of the window", lambda: not stage.is_running(window))
        until("the end of the guard", lambda: agent.guards() == [])

    def test_ends_with_an_agent_that_is_killed_though_it_hangs(self):
        agent, window = self.start_with_window()
        os.kill(window, signal.SIGSTOP)
        agent.kill()
        until("the end of the window", lambda: not stage.is_running(window))


if __name__ == "__main__":
    stage.main()
