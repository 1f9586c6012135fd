#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""walk_test.py VANTORA

Walks the whole settings window of the real agent through the accessibility bus, tab by tab,
as a screen reader does, and prints the role, name, value and description of everything that
shows. Fails where a control has no name, where the preview says nothing, or where the modules
do not come in their order.
"""
import window_stage

TABS = ["Módulos", "Aparência", "Coleta", "Codex semanal", "Claude", "Geral"]
CONTROLS = {"push button", "check box", "combo box", "spin button", "text", "page tab",
            "radio button", "toggle button"}


class WalkTest(window_stage.WindowTest):
    def value(self, node):
        if node.get_value_iface() is not None:
            return f"{self.atspi.Value.get_current_value(node):g}"
        if node.get_role_name() == "check box":
            is_on = node.get_state_set().contains(self.atspi.StateType.CHECKED)
            return "on" if is_on else "off"
        return ""

    def walk(self, node, depth=0, found=None):
        """Everything that shows below the node, in the order of the tree."""
        found = [] if found is None else found
        if not node.get_state_set().contains(self.atspi.StateType.SHOWING):
            return found
        entry = (node.get_role_name(), node.get_name(), self.value(node), node.get_description())
        found.append(entry)
        print("  " * depth + " | ".join(part for part in entry if part))
        for index in range(node.get_child_count()):
            child = node.get_child_at_index(index)
            if child is not None:
                self.walk(child, depth + 1, found)
        return found

    def check_names(self, tab, found):
        for role, name, _value, description in found:
            if role in CONTROLS:
                # A stepper's field is read as the stepper.
                self.assertTrue(name or description or role == "text",
                                f"a {role} on the tab {tab} has no name")

    def test_everything_that_shows_can_be_read(self):
        self.configure(("batteryPercent", "batteryTime"), ("upload", "download"),
                       ("cpuUsage", "cpuTemperature"))
        agent = self.start_agent().wait_until_owner()
        window = self.open_window(agent)
        for tab in TABS:
            window.tab(tab)
            print(f"== {tab}")
            found = self.walk(window.frame)
            self.check_names(tab, found)
            if tab == "Módulos":
                self.check_modules(found)
                window.press("push button", lambda name: name.startswith("Editar, módulo 1 ("))
                window.find("combo box", "Bateria · porcentagem")
                print("== the first module, open")
                self.check_names(tab, self.walk(window.frame))
        self.assertEqual(agent.end(), 0)

    def check_modules(self, found):
        previews = [entry for entry in found if entry[1] == "Prévia do bloco na barra"]
        self.assertEqual([entry[0] for entry in previews], ["image"])
        self.assertIn("Bateria · porcentagem: ", previews[0][3])
        rows = [name for role, name, _value, _description in found
                if role == "frame" and name.startswith("módulo ")]
        self.assertEqual(rows, ["módulo 1 (Bateria · porcentagem)", "módulo 2 (Rede · upload)",
                                "módulo 3 (CPU · uso total)"])
        names = [name for _role, name, _value, _description in found]
        self.assertTrue(any(name.startswith("Bateria · porcentagem: ") for name in names))


if __name__ == "__main__":
    window_stage.main()
