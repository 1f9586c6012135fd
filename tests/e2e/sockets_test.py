#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""No network socket of its own: the agent under strace, with everything shown, a panel, the
settings window and both quota tools at work.

    /usr/bin/python3 sockets_test.py VANTORA [-v]

Packages: strace, xvfb besides those of stage.py. Skipped (status 77) where one is missing or
nothing may be traced.
"""

import os
import re
import shutil
import subprocess
import sys

import stage
from stage import until

ALLOWED = {"AF_UNIX", "AF_NETLINK"}
CALLS = "socket,socketpair,clone,clone3,fork,vfork,execve"
TRACE = ["strace", "-f", "-qq", "--seccomp-bpf", "-e", "trace=" + CALLS, "-e", "signal=none"]
# What the trace says: "PID call(...) = RESULT", or the same in two pieces.
FORK = re.compile(r"(?:<\.\.\. )?(?:clone3?|v?fork)(?:\(| resumed>).*= (\d+)$")
EXEC = re.compile(r"(?:<\.\.\. )?execve(?:\(| resumed>).*= 0$")
SOCKET = re.compile(r"socket(?:pair)?\((\w+)")

METRICS = ("cpuUsage", "batteryPercent", "batteryTime", "download", "upload",
           "batteryTemperature", "cpuTemperature", "fan1RPM", "fan2RPM", "fan1Percent",
           "fan2Percent", "adapterWatts")


def socket_families(trace, program):
    """The families of all sockets that were asked for by the process `program`, its threads
    and what it forked, up to the moment at which that became another program."""
    lines = [line.split(None, 1) for line in trace.splitlines() if " " in line]
    parents = {}
    others = {}  # where in the trace a process became another program
    for place, (pid, text) in enumerate(lines):
        started = FORK.match(text)
        if started:
            parents[started.group(1)] = (pid, place)
        elif EXEC.match(text) and pid != str(program):
            others.setdefault(pid, place)

    def is_own(pid, place):
        while place < others.get(pid, len(lines)):
            if pid == str(program):
                return True
            if pid not in parents:
                return False
            pid, place = parents[pid]
        return False

    return {found.group(1) for place, (pid, text) in enumerate(lines)
            if (found := SOCKET.match(text)) and is_own(pid, place)}


def may_trace():
    if not shutil.which("strace") or not shutil.which("Xvfb"):
        return False
    # A filter that nothing passes, and whether the tracer may attach at all.
    return subprocess.run(["strace", "-f", "--seccomp-bpf", "-e", "trace=socket", "true"],
                          capture_output=True, check=False).returncode == 0


class SocketsTest(stage.StageTest):
    def traced(self, *command):
        log = os.path.join(self.folder, "trace")
        child = self.start([*TRACE, "-o", log, *command])
        child.wait(stage.TIMEOUT)
        with open(log, encoding="utf-8", errors="replace") as trace:
            text = trace.read()
        return text, text.split(None, 1)[0]

    def test_the_trace_shows_a_network_socket(self):
        # Of the program, of its thread and of its fork; not of the program that it starts.
        text, program = self.traced(sys.executable, "-S", "-c", """if True:
            import os, socket, subprocess, sys, threading
            socket.socket(socket.AF_INET)
            thread = threading.Thread(target=lambda: socket.socketpair(socket.AF_UNIX))
            thread.start(); thread.join()
            if os.fork() == 0:
                socket.socket(socket.AF_INET6)
                os._exit(0)
            os.wait()
            subprocess.run([sys.executable, "-S", "-c",
                            "import socket; socket.socket(socket.AF_NETLINK, socket.SOCK_RAW)"])
            """)
        self.assertIn("AF_NETLINK", text)
        self.assertEqual(socket_families(text, program), {"AF_INET", "AF_INET6", "AF_UNIX"})

    def test_the_agent_opens_none(self):
        self.start_display()
        self.start_bus()
        self.start_logind()
        self.start([sys.executable, os.path.join(os.path.dirname(stage.TOOL), "watcher.py"),
                    os.path.join(self.folder, "registrations")])
        tools = [self.quota_tool("claude"), self.quota_tool("codex")]
        pairs = list(zip(METRICS[0::2], METRICS[1::2]))
        self.configure(*pairs, *stage.QUOTAS, claudeSettings=stage.CLAUDE,
                       codexSettings=stage.CODEX)
        log = os.path.join(self.folder, "trace")
        # With the tracer aside, so that the agent is the process that was started.
        agent = stage.Agent(self, *TRACE, "-D", "-o", log, self.program).wait_until_owner()
        until("the item in the panel", agent.said)
        self.assertEqual(agent.said(), ["vantora: O item de status está no painel."])
        for tool in tools:
            tool.wait_for_start()
        agent.click()
        if self.has_window_program():
            until("the window", lambda: self.windows("Configurações do Vantora"))
        for tool in tools:
            tool.allow_answers()
        until("the answers", lambda: "cota semanal (%): 43%" in agent.text()
              and "cota semanal (%): 37%" in agent.text())
        until("readings", lambda: "uso total: —" not in agent.text())
        agent.choose("Pausar")
        until("the pause saved", lambda: self.saved()["paused"])
        self.tell_sleep(True)
        until("the lock let go of", lambda: not self.holds_sleep())
        self.assertEqual(agent.end(), 0)

        with open(log, encoding="utf-8", errors="replace") as file:
            trace = file.read()
        self.assertEqual(socket_families(trace, agent.pid), ALLOWED)


if __name__ == "__main__":
    if not may_trace():
        print("strace or Xvfb is missing, or nothing may be traced here")
        sys.exit(77)
    stage.main()
