#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""A desktop that shows no status items: one notification in a session says so.

    /usr/bin/python3 no_panel_test.py VANTORA [-v]
"""

import subprocess
import sys

import stage
from stage import until

NOTIFICATIONS = "org.freedesktop.Notifications"


class NoPanelTest(stage.StageTest):
    def notified(self):
        """What each of the notifications says."""
        with self.session() as bus:
            calls = bus.call_blocking(NOTIFICATIONS, "/org/freedesktop/Notifications",
                                      "org.freedesktop.DBus.Mock", "GetMethodCalls", "s",
                                      ("Notify",), timeout=10)
        return [str(arguments[4]) for _, arguments in calls]

    def test_a_session_is_told_once(self):
        self.start_bus()
        self.start([sys.executable, "-m", "dbusmock", "--session", "--template",
                    "notification_daemon"], stderr=subprocess.DEVNULL)
        until("the notifications", lambda: not self.notified() or True)
        first = self.start_agent().wait_until_owner()
        until("the notification", self.notified)
        self.assertIn("nenhum painel", self.notified()[0])
        # What helps, on GNOME and elsewhere, and how to reach the window meanwhile.
        for words in ("AppIndicator", "bandeja do sistema", "abra o Vantora de novo"):
            self.assertIn(words, self.notified()[0])
        self.assertEqual(first.end(), 0)
        second = self.start_agent().wait_until_owner()
        until("the line", second.said)
        self.assertIn("Nenhum painel", second.said()[0])
        self.assertEqual(second.end(), 0)
        self.assertEqual(len(self.notified()), 1)


if __name__ == "__main__":
    stage.main()
