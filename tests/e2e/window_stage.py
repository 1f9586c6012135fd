# SPDX-License-Identifier: MIT
"""What the end-to-end tests of the settings window share: the window through the
accessibility bus, and a stage on which the real agent opens it.

Packages: xvfb, at-spi2-core, gir1.2-atspi-2.0, python3-gi besides those of stage.py.
"""

import os
import shutil
import subprocess
import sys
import time

import stage
from stage import until


class Window:
    """The settings window, through the accessibility bus."""

    def __init__(self, atspi):
        self.atspi = atspi
        self.frame = None

    def open(self):
        def find():
            desktop = self.atspi.get_desktop(0)
            for index in range(desktop.get_child_count()):
                application = desktop.get_child_at_index(index)
                for place in range(application.get_child_count()):
                    frame = application.get_child_at_index(place)
                    if frame.get_name().startswith("Configurações do Vantora"):
                        return frame
            return None
        self.frame = until("the window", find)
        return self

    def application(self):
        return self.frame.get_application()

    def _search(self, root, role, name):
        if not self._is_showing(root) and root.get_role_name() != "application":
            return None  # nothing below shows either
        if root.get_role_name() == role and name(root.get_name()):
            return root
        for index in range(root.get_child_count()):
            found = self._search(root.get_child_at_index(index), role, name)
            if found:
                return found
        return None

    def _is_showing(self, control):
        return control.get_state_set().contains(self.atspi.StateType.SHOWING)

    def find(self, role, name, root=None):
        match = name if callable(name) else lambda text: text == name
        return until(f"{role} {name}",
                     lambda: self._search(root or self.application(), role, match))

    def press(self, role, name):
        control = self.find(role, name)
        names = [self.atspi.Action.get_action_name(control, index)
                 for index in range(self.atspi.Action.get_n_actions(control))]
        wanted = next(i for i, n in enumerate(names) if n in ("Press", "Toggle"))
        self.atspi.Action.do_action(control, wanted)

    def type(self, field, text):
        self.atspi.EditableText.set_text_contents(field, text)

    def choose(self, entry):
        """The entry of the open menu: the toolkit leads assistive tools there by focus alone."""
        time.sleep(0.5)  # the menu takes the keyboard without a sign of it
        for key in [0xff54] * entry + [0xff0d]:  # Down, Return
            self.atspi.generate_keyboard_event(key, None, self.atspi.KeySynthType.SYM)
            time.sleep(0.1)

    def key(self, keysym):
        self.atspi.generate_keyboard_event(keysym, None, self.atspi.KeySynthType.SYM)

    def focus(self, control):
        self.atspi.Component.grab_focus(control)
        until(f"the focus on {control.get_name()}", lambda: control.get_state_set().contains(
            self.atspi.StateType.FOCUSED))

    def has_focus(self, control):
        return control.get_state_set().contains(self.atspi.StateType.FOCUSED)

    def place(self):
        place = self.atspi.Component.get_extents(self.frame, self.atspi.CoordType.SCREEN)
        return place.x, place.y, place.width, place.height

    def ground(self):
        """How light the window's ground is, from 0 to 255."""
        x, y, _width, height = self.place()
        pixel = subprocess.run(
            ["import", "-window", "root", "-crop", f"1x1+{x + 3}+{y + height - 3}", "-depth", "8",
             "gray:-"], capture_output=True, check=True).stdout
        return pixel[0]

    def tab(self, name):
        self.atspi.Action.do_action(self.find("page tab", name), 0)  # its only one, "Press"


class WindowTest(stage.StageTest):
    """A test with a display, a session bus and the accessibility bus behind it."""

    screen = "1000x800"

    def setUp(self):
        super().setUp()
        self.environment.update(NO_AT_BRIDGE="0", QT_ACCESSIBILITY="1",
                                QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        self.start_display(self.screen)
        self.start_bus()

    def open_window(self, agent):
        """The agent's window, opened by a click on its item."""
        # The accessibility library looks for its buses in the environment, once.
        os.environ.pop("AT_SPI_BUS_ADDRESS", None)
        os.environ.update(self.environment)
        import gi
        gi.require_version("Atspi", "2.0")
        from gi.repository import Atspi
        agent.click()
        self.atspi = Atspi
        return Window(Atspi).open()


def main():
    if not shutil.which("Xvfb"):
        print("Xvfb is not installed")
        sys.exit(stage.SKIPPED)
    stage.main()
