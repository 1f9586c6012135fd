#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""small_screen_test.py VANTORA

The settings window of the real agent on a screen of 800 x 600 whose scale is 1.5: it is within the
screen with everything below its tabs.
"""
import re
import subprocess

import window_stage
from stage import until

TITLE = "^Configurações do Vantora"
SCREEN = (800, 600)


class SmallScreenTest(window_stage.WindowTest):
    screen = "800x600"

    def geometry(self):
        """Left, top, width and height of the window in the screen's pixels."""
        window = until("the window", lambda: self.windows(TITLE))[0]
        answer = subprocess.run(["xdotool", "getwindowgeometry", "--shell", window],
                                env=self.environment, capture_output=True, text=True, check=True)
        return [int(re.search(rf"{name}=(-?\d+)", answer.stdout)[1])
                for name in ("X", "Y", "WIDTH", "HEIGHT")]

    def test_the_window_is_within_the_screen(self):
        self.environment["QT_SCALE_FACTOR"] = "1.5"
        agent = self.start_agent().wait_until_owner()
        agent.click()
        left, top, width, height = self.geometry()
        self.assertGreaterEqual(left, 0)
        self.assertGreaterEqual(top, 0)
        self.assertLessEqual(left + width, SCREEN[0])
        self.assertLessEqual(top + height, SCREEN[1])
        # As large as there is room for: the scale did count.
        self.assertGreater(width, 700)
        self.assertEqual(agent.end(), 0)


if __name__ == "__main__":
    window_stage.main()
