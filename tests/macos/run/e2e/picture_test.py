# SPDX-License-Identifier: MIT
"""What the status item shows."""

import os
import time
import unittest

from stage import HERE, Test, sampling, until

# After two passes every reading has its value, and the scripted machine's do not change.
SETTLED = "CPU · uso total: 23%; CPU · maior temperatura (SMC experimental): 47°C"


def pgm(path):
    with open(path, "rb") as file:
        magic, size, most, pixels = file.read().split(b"\n", 3)
    assert magic == b"P5" and most == b"255", (magic, most)
    return [int(part) for part in size.split()], pixels


def settled(agent):
    return agent.until("settled readings", lambda state: SETTLED in state["item"]["label"]
                       and "0,64M" in state["item"]["label"])


class ThePicture(Test):
    def test_is_a_template_six_points_narrower_than_the_item(self):
        state = settled(self.agent())
        item = state["item"]
        self.assertTrue(item["image"]["template"])
        self.assertTrue(item["imageOnly"])
        self.assertEqual(item["length"], item["image"]["width"] + 6)
        self.assertEqual(item["image"]["height"], 22)

    def test_looks_as_it_did_at_both_densities(self):
        agent = self.agent()
        settled(agent)
        for scale in (1, 2):
            path = os.path.join(self.home, f"{scale}x.pgm")
            agent.ask(f"picture {scale} {path}")
            kept = os.path.join(HERE, "golden", f"{scale}x.pgm")
            if os.environ.get("VANTORA_NEW_PICTURES"):
                os.replace(path, kept)
                continue
            (size, pixels), (kept_size, kept_pixels) = pgm(path), pgm(kept)
            self.assertEqual(size, kept_size)
            # FreeType may round otherwise in another version; a text that moved would show.
            worst = max(abs(a - b) for a, b in zip(pixels, kept_pixels))
            self.assertLessEqual(worst, 32, f"{path} differs from {kept}")

    def test_is_drawn_anew_only_when_it_changes(self):
        agent = self.agent()
        before = settled(agent)
        passes = before["calls"]["hostStatistics"] + 3
        after = agent.until("three more passes",
                            lambda state: state["calls"]["hostStatistics"] >= passes)
        self.assertEqual(after["item"]["imageChanges"], before["item"]["imageChanges"])
        agent.ask("set busy 50")
        changed = agent.until("the new reading", lambda state: "uso total: 50%" in state["item"]["label"])
        self.assertEqual(changed["item"]["imageChanges"], before["item"]["imageChanges"] + 1)

    def test_costs_nothing_that_stays(self):
        agent = self.agent()
        settled(agent)
        redraws = int(os.environ.get("VANTORA_REDRAWS", "1000"))
        first = self.redraw(agent, 20)
        last = self.redraw(agent, redraws)
        self.assertGreaterEqual(last["item"]["imageChanges"],
                                first["item"]["imageChanges"] + redraws)
        self.assertLessEqual(last["pooled"], first["pooled"])
        self.assertLessEqual(last["blocks"], first["blocks"])
        # A pass may be under way, with some objects of its own.
        self.assertLess(last["living"], first["living"] + 40, last["census"])

    def redraw(self, agent, times):
        """The power source changes, and with it the picture, so many times."""
        for turn in range(times):
            charge = 30 + turn % 2 * 20
            changes = agent.state()["item"]["imageChanges"]
            agent.ask(f"set charge {charge}")
            self.assertTrue(agent.ask("power"))
            agent.until("the next picture",
                        lambda state: state["item"]["imageChanges"] > changes
                        and f": {charge}%" in state["item"]["label"])
        return agent.state()


class TheToolTip(Test):
    def test_says_what_the_label_says_but_is_left_alone_for_a_while(self):
        agent = self.agent()
        began = time.monotonic()
        first = settled(agent)
        self.assertNotEqual(first["item"]["toolTip"], "")
        agent.ask("set busy 33")
        # It comes without another redraw.
        state = agent.until("the latest text", lambda state: ": 33%" in state["item"]["toolTip"])
        self.assertLessEqual(state["item"]["toolTipChanges"],
                             2 + int(time.monotonic() - began) // 10)


class Sampling(Test):
    def test_has_a_timer_that_may_wait_a_little_and_keeps_app_nap_away(self):
        agent = self.agent()
        state = settled(agent)
        self.assertEqual(sampling(state), [{"queue": "local.vantora.sampling", "utility": True,
                                            "interval": 2.0, "leeway": 0.1}])
        # NSActivityUserInitiatedAllowingIdleSystemSleep
        self.assertEqual(state["activities"], [0x00EFFFFF])
        agent.ask("quit")
        self.ended(agent)


if __name__ == "__main__":
    unittest.main()
