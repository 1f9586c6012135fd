# SPDX-License-Identifier: MIT
"""settings_test.py VANTORA [FOLDER]

The real agent and its real settings window under Xvfb, driven through the accessibility
bus as a screen reader would: edit, reorder, fill the list, pause, export, import, restore,
close and open again, in light and dark. Each step is looked up in the configuration that
the agent saved. With FOLDER, a picture of the screen after each step goes there. Packages:
xvfb, dbus-daemon, at-spi2-core, gir1.2-atspi-2.0, python3-gi, xdotool, imagemagick.
"""
import json
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import threading
import time

from stage import start_bus, start_display, until
from window_stage import Window

TIMEOUT = 20  # seconds: allows for a loaded machine


class Session:
    """A screen, a message bus and a home of the test's own."""

    def __init__(self):
        self.home = tempfile.mkdtemp(prefix="vantora-e2e-")
        self.children = []
        for name in ("DBUS_SESSION_BUS_ADDRESS", "WAYLAND_DISPLAY", "XDG_ACTIVATION_TOKEN",
                     "AT_SPI_BUS_ADDRESS", "QT_QPA_PLATFORM"):
            os.environ.pop(name, None)
        os.environ.update(
            HOME=self.home, XDG_CONFIG_HOME=self.home + "/config", XDG_RUNTIME_DIR=self.home,
            NO_AT_BRIDGE="0", QT_ACCESSIBILITY="1", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1")
        _, os.environ["DISPLAY"] = start_display(self.start)
        _, os.environ["DBUS_SESSION_BUS_ADDRESS"] = start_bus(self.start, self.home + "/bus")

    def start(self, command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        child = subprocess.Popen(command, **options)
        self.children.append(child)
        return child

    def end(self):
        for child in reversed(self.children):
            if child.poll() is None:
                child.terminate()
                try:
                    child.wait(5)
                except subprocess.TimeoutExpired:
                    child.kill()
        shutil.rmtree(self.home, ignore_errors=True)


class Panel:
    """As much of a panel as the agent needs to offer its item."""

    INTERFACE = """<node><interface name='org.kde.StatusNotifierWatcher'>
      <method name='RegisterStatusNotifierItem'><arg type='s' direction='in'/></method>
      <method name='RegisterStatusNotifierHost'><arg type='s' direction='in'/></method>
      <property name='RegisteredStatusNotifierItems' type='as' access='read'/>
      <property name='IsStatusNotifierHostRegistered' type='b' access='read'/>
      <property name='ProtocolVersion' type='i' access='read'/>
      <signal name='StatusNotifierHostRegistered'/></interface></node>"""

    def __init__(self, gio, glib):
        self.bus = gio.bus_get_sync(gio.BusType.SESSION)
        self.item = None
        properties = {
            "RegisteredStatusNotifierItems": glib.Variant("as", []),
            "IsStatusNotifierHostRegistered": glib.Variant("b", True),
            "ProtocolVersion": glib.Variant("i", 0)}

        def call(_bus, sender, _path, _interface, method, parameters, invocation):
            if method == "RegisterStatusNotifierItem":
                name = parameters.unpack()[0]
                self.item = sender if name.startswith("/") else name
            invocation.return_value(None)

        # In a context of its own: the accessibility library turns the usual one itself.
        def serve():
            context = glib.MainContext.new()
            context.push_thread_default()
            node = gio.DBusNodeInfo.new_for_xml(self.INTERFACE)
            self.bus.register_object("/StatusNotifierWatcher", node.interfaces[0], call,
                                     lambda *about: properties[about[-1]], None)
            gio.bus_own_name_on_connection(self.bus, "org.kde.StatusNotifierWatcher",
                                           gio.BusNameOwnerFlags.NONE, None, None)
            glib.MainLoop(context).run()

        threading.Thread(target=serve, daemon=True).start()

    def click(self, glib, gio):
        """Opens the window."""
        item = until("the status item", lambda: self.item)
        self.bus.call_sync(item, "/StatusNotifierItem", "org.kde.StatusNotifierItem", "Activate",
                           glib.Variant("(ii)", (0, 0)), None, gio.DBusCallFlags.NONE, 5000, None)


class Portal:
    """The desktop's word for light and dark."""

    INTERFACE = """<node><interface name='org.freedesktop.portal.Settings'>
      <method name='Read'><arg type='s' direction='in'/><arg type='s' direction='in'/>
        <arg type='v' direction='out'/></method>
      <signal name='SettingChanged'><arg type='s'/><arg type='s'/><arg type='v'/></signal>
      </interface></node>"""
    PATH = "/org/freedesktop/portal/desktop"
    NAME = "org.freedesktop.portal.Settings"

    def __init__(self, gio, glib):
        self.glib = glib
        # A connection of its own: the accessibility library turns the usual one's context.
        self.bus = gio.DBusConnection.new_for_address_sync(
            os.environ["DBUS_SESSION_BUS_ADDRESS"],
            gio.DBusConnectionFlags.AUTHENTICATION_CLIENT |
            gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
        self.scheme = 2

        def call(_bus, _sender, _path, _interface, _method, _parameters, invocation):
            value = glib.Variant("v", glib.Variant("u", self.scheme))
            invocation.return_value(glib.Variant("(v)", (value,)))

        def serve():
            context = glib.MainContext.new()
            context.push_thread_default()
            node = gio.DBusNodeInfo.new_for_xml(self.INTERFACE)
            self.bus.register_object(self.PATH, node.interfaces[0], call, None, None)
            gio.bus_own_name_on_connection(self.bus, "org.freedesktop.portal.Desktop",
                                           gio.BusNameOwnerFlags.NONE, None, None)
            glib.MainLoop(context).run()

        threading.Thread(target=serve, daemon=True).start()

    def choose(self, scheme):
        self.scheme = scheme
        self.bus.emit_signal(None, self.PATH, self.NAME, "SettingChanged", self.glib.Variant(
            "(ssv)", ("org.freedesktop.appearance", "color-scheme",
                      self.glib.Variant("u", scheme))))


def main():
    program = os.path.abspath(sys.argv[1])
    pictures = sys.argv[2] if len(sys.argv) > 2 else None
    session = Session()
    try:
        run(session, program, pictures)
    except SystemExit:
        if pictures:
            os.makedirs(pictures, exist_ok=True)
            subprocess.run(["import", "-window", "root", f"{pictures}/failure.png"], check=False)
        raise
    finally:
        session.end()
    print("settings_test: all steps passed")


def run(session, program, pictures):
    # Only now: the library connects to the buses that the environment names.
    import gi
    gi.require_version("Atspi", "2.0")
    from gi.repository import Atspi, Gio, GLib

    file = session.home + "/config/Vantora/configuration.json"

    def saved():
        with open(file, encoding="utf-8") as opened:
            return json.load(opened)

    steps = 0

    def step(name):
        nonlocal steps
        steps += 1
        print(f"{steps}. {name}")
        if pictures:
            os.makedirs(pictures, exist_ok=True)
            subprocess.run(["import", "-window", "root", f"{pictures}/{steps:02}.png"],
                           check=False)

    def on_screen(*commands):
        """What a window manager would do with the window."""
        subprocess.run(["xdotool", "search", "--onlyvisible", "--name",
                        "^Configurações do Vantora", *commands], check=True)

    panel = Panel(Gio, GLib)
    portal = Portal(Gio, GLib)
    agent = session.start([program], stderr=None)
    panel.click(GLib, Gio)
    began = time.monotonic()
    window = Window(Atspi).open()
    step(f"the window opened within {time.monotonic() - began:.2f} s of the click")

    def bar_width():
        """The accessible description of the picture in the window."""
        window.tab("Aparência")
        text = window.find("label", lambda n: n.startswith("Largura atual do bloco: ")).get_name()
        window.tab("Módulos")
        return float(text.split()[-2].replace(",", "."))

    narrow = bar_width()
    window.press("push button", lambda n: n.startswith("Editar, módulo 2 ("))
    width = window.find("spin button", lambda n: n.startswith("Largura, módulo 2 ("))
    Atspi.Value.set_current_value(width, 77)
    until("the wider picture", lambda: bar_width() == narrow + 77 - 39)
    until("the width saved", lambda: saved()["modules"][1]["width"] == 77)
    step("a width was edited, drawn and saved")

    def order():
        return [module["id"] for module in saved()["modules"]]

    before = order()
    window.press("push button", lambda n: n.startswith("Mover, módulo 2 ("))
    window.choose(1)
    until("the order saved", lambda: order() == [before[1], before[0], *before[2:]])
    step("a module was moved up with the menu")

    on_screen("windowfocus", "--sync")
    handle = window.find("push button", lambda n: n.startswith("Mover, módulo 1 ("))
    window.focus(handle)
    window.key(0xff54)  # Down
    until("the order saved", lambda: order() == before)
    if not window.has_focus(handle):
        raise SystemExit("settings_test: the moved module lost the focus")
    step("it was moved back down with the keyboard")

    window.press("push button", "Adicionar módulo")
    row = window.find("frame", "módulo 1 (CPU · uso total)")
    picker = window.find("combo box", "CPU · uso total", row)
    until("the focus on the new module's first picker", lambda: window.has_focus(picker))
    if picker.get_description() != "Linha 1 (L1), módulo 1 (CPU · uso total)":
        raise SystemExit(f"settings_test: the picker is described {picker.get_description()!r}")
    until("the new module saved", lambda: len(saved()["modules"]) == len(before) + 1)
    step("a module was added, shown and ready to be chosen for")

    add = window.find("push button", "Adicionar módulo")
    for count in range(len(order()) + 1, 25):
        Atspi.Action.do_action(add, 0)
        until(f"{count} modules saved", lambda: len(order()) == count)
    full = order()
    until("the disabled button",
          lambda: not add.get_state_set().contains(Atspi.StateType.ENABLED))
    if add.get_description() != ("A barra já tem 24 módulos, o máximo. Remova um para adicionar "
                                 "outro."):
        raise SystemExit(f"settings_test: the full list says {add.get_description()!r}")
    step("a 25th module was not offered")

    if window.ground() < 200:
        raise SystemExit(f"settings_test: a light desktop's window is {window.ground()} light")
    portal.choose(1)
    until("the dark window", lambda: window.ground() < 100)
    step("the open window went dark with the desktop")
    portal.choose(0)
    until("the light window", lambda: window.ground() > 200)
    step("and light again")

    window.tab("Geral")
    window.press("check box", "Pausar coleta")
    until("the pause saved", lambda: saved()["paused"] is True)
    step("the sampling was paused")

    layout = session.home + "/Vantora-layout.json"
    window.press("push button", "Exportar JSON…")
    dialog = window.find("dialog", lambda n: n.startswith("Exportar JSON"))
    window.type(window.find("text", lambda n: "ome" in n, dialog), layout)
    step("the export was asked for")
    window.press("push button", lambda n: n.replace("&", "") in ("Salvar", "Save"))
    until("the exported file", lambda: os.path.exists(layout))
    window.find("label", "Configuração exportada.")
    with open(layout, encoding="utf-8") as opened:
        exported = json.load(opened)
    if exported != saved():
        raise SystemExit("settings_test: the export is not what is in force")
    step("the configuration was exported")

    exported["gap"] = 9
    exported["paused"] = False
    with open(layout, "w", encoding="utf-8") as opened:
        json.dump(exported, opened)
    window.press("push button", "Importar JSON…")
    dialog = window.find("dialog", lambda n: n.startswith("Importar JSON"))
    window.type(window.find("text", lambda n: "ome" in n, dialog), layout)
    window.press("push button", lambda n: n.replace("&", "") in ("Abrir", "Open"))
    until("the import saved", lambda: saved()["gap"] == 9 and saved()["paused"] is False)
    step("a layout was imported")

    window.press("push button", "Restaurar padrão")
    window.find("push button", "Cancelar")
    window.press("push button", "Restaurar")
    until("the defaults saved", lambda: saved()["gap"] == 4 and
          saved()["modules"][0]["width"] == 34 and saved()["modules"][0]["top"] ==
          "batteryPercent")
    step("the defaults were restored")

    if order() == full:
        raise SystemExit("settings_test: the restored modules are the old ones")
    child = window.application().get_process_id()
    on_screen("windowmove", "--sync", "60", "90")
    place = until("the moved window",
                  lambda: window.place() if window.place()[:2] == (60, 90) else None)
    on_screen("windowfocus", "--sync")
    subprocess.run(["xdotool", "key", "ctrl+w"], check=True)
    until("the closed window's end", lambda: not os.path.exists(f"/proc/{child}"))
    panel.click(GLib, Gio)
    window = Window(Atspi).open()
    window.find("check box", "Pausar coleta")  # On the last tab, which was the last one seen.
    until("the place where it was", lambda: window.place() == place)
    step("the window was closed and opened again with its tab and place")

    child = window.application().get_process_id()
    agent.send_signal(signal.SIGTERM)
    agent.wait(TIMEOUT)
    if agent.returncode != 0:
        raise SystemExit(f"settings_test: the agent ended with {agent.returncode}")
    until("the window's end", lambda: not os.path.exists(f"/proc/{child}"))
    step("the window ended with the agent")


if __name__ == "__main__":
    main()
