#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""What a desktop is told by notification: once a session that it shows no status items, and at
a click that the settings window is not installed.

    /usr/bin/python3 notifications_test.py VANTORA [-v]
"""

import shutil
import subprocess
import sys

import stage
from stage import until

NOTIFICATIONS = "org.freedesktop.Notifications"


class NotificationsTest(stage.StageTest):
    def notified(self):
        """What each of the notifications says."""
        with self.session() as bus:
            calls = bus.call_blocking(NOTIFICATIONS, "/org/freedesktop/Notifications",
                                      "org.freedesktop.DBus.Mock", "GetMethodCalls", "s",
                                      ("Notify",), timeout=10)
        return [str(arguments[4]) for _, arguments in calls]

    def start_notifications(self):
        self.start_bus()
        self.start([sys.executable, "-m", "dbusmock", "--session", "--template",
                    "notification_daemon"], stderr=subprocess.DEVNULL)
        until("the notifications", lambda: not self.notified() or True)

    def test_a_session_is_told_once(self):
        self.start_notifications()
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

    def test_a_click_says_what_to_install_where_the_window_is_not(self):
        self.start_notifications()
        agent = stage.Agent(self, shutil.copy(self.program, self.folder)).wait_until_owner()
        agent.click()
        sentence = ("A janela de configurações não pôde ser aberta. Falta o programa "
                    "vantora-settings: instale o pacote vantora-settings.")
        until("the notification", lambda: sentence in self.notified())
        self.assertIn("vantora: " + sentence, agent.said())
        self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    stage.main()
