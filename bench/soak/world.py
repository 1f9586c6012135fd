# SPDX-License-Identifier: MIT
"""The session that the agent lives in: a message bus with panels, a screen with a tray, a
login service, and where the system allows it a network and sensors of its own. All of it
comes and goes at random."""
import os
import pathlib
import shutil
import subprocess
import sys

from gi.repository import Gio, GLib

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.path.insert(0, str(ROOT / "tests/support"))
from session.machine import Machine
from session.servers import start_bus, start_display
# Who owns the watcher decides what picture it is offered (/proc/PID/comm).
PANELS = ["waybar", "gnome-shell", "plasmashell", "xfce4-panel", "other"]


class World:
    def __init__(self, folder, chance):
        self.folder = pathlib.Path(folder)
        self.chance = chance
        self.processes = {}  # by their part
        self.started = set()  # the parts that keep their place: a screen its number
        self.machine = None  # in the place of the kernel's /sys/class
        self.address = f"unix:path={folder}/bus"
        self.environment = {**os.environ, "DBUS_SESSION_BUS_ADDRESS": self.address,
                            "DBUS_SYSTEM_BUS_ADDRESS": self.address, "LC_ALL": "C.UTF-8"}
        for name in ("WAYLAND_DISPLAY", "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"):
            self.environment.pop(name, None)

    def record(self, what):
        with open(self.folder / "events", "ab", buffering=0) as events:
            events.write(f"{what}\n".encode())

    def start(self, part, command, **options):
        options = {"stdout": subprocess.DEVNULL, "stderr": subprocess.DEVNULL,
                   "stdin": subprocess.DEVNULL, "env": self.environment, **options}
        self.processes[part] = subprocess.Popen([str(word) for word in command], **options)
        return self.processes[part]

    def stop(self, part):
        process = self.processes.pop(part, None)
        if process is None:
            return
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()

    def own(self):
        return {process.pid for process in self.processes.values()}

    def end(self):
        for part in reversed(list(self.processes)):
            self.stop(part)
        if self.machine is not None:
            self.machine.unmount()

    # The bus and who speaks on it.

    def start_bus(self):
        start_bus(lambda command, **options: self.start("bus", command, **options),
                  f"{self.folder}/bus")
        self.start("logind", ["/usr/bin/python3", ROOT / "bench/soak/logind.py"],
                   stdin=subprocess.PIPE)

    def restart_bus(self):
        self.record("bus restarted")
        for part in ("panel", "logind", "bus"):
            self.stop(part)
        self.start_bus()

    def sleep(self, begins):
        logind = self.processes.get("logind")
        if logind is not None and logind.poll() is None:
            self.record("machine sleeps" if begins else "machine wakes")
            logind.stdin.write(b"s" if begins else b"w")
            logind.stdin.flush()

    def start_panel(self, name):
        """One of PANELS. A program is called as the file that was executed."""
        self.record(f"panel {name}")
        link = self.folder / name
        if not link.exists():
            link.symlink_to("/usr/bin/python3")
        self.start("panel", [link, ROOT / "bench/peers/panel.py"], stdin=subprocess.PIPE)

    def call(self, name, path, interface, method, parameters, answer=None):
        """Asks the agent something on the bus; None when it could not be asked."""
        try:
            bus = Gio.DBusConnection.new_for_address_sync(
                self.address, Gio.DBusConnectionFlags.AUTHENTICATION_CLIENT |
                Gio.DBusConnectionFlags.MESSAGE_BUS_CONNECTION, None, None)
            bus.set_exit_on_close(False)
            try:
                return bus.call_sync(name, path, interface, method, parameters,
                                     answer and GLib.VariantType(answer),
                                     Gio.DBusCallFlags.NO_AUTO_START, 3_000, None)
            finally:
                bus.close_sync(None)
        except GLib.Error:
            return None

    def open_settings(self, agent):
        if self.chance.random() < 0.5:
            self.call(f"org.kde.StatusNotifierItem-{agent}-1", "/StatusNotifierItem",
                      "org.kde.StatusNotifierItem", "Activate", GLib.Variant("(ii)", (0, 0)))
        else:
            self.call("local.vantora.Vantora", "/local/vantora/Vantora",
                      "org.freedesktop.Application", "Activate", GLib.Variant("(a{sv})", ({},)))

    def item_text(self, agent):
        """What the item says to assistive tools; None when it could not be asked."""
        answer = self.call(f"org.kde.StatusNotifierItem-{agent}-1", "/StatusNotifierItem",
                           "org.freedesktop.DBus.Properties", "Get",
                           GLib.Variant("(ss)", ("org.kde.StatusNotifierItem", "ToolTip")), "(v)")
        return answer and answer.unpack()[0][2]

    def menu(self):
        """The labels of the item's menu by their numbers."""
        layout = self.call("local.vantora.Vantora", "/MenuBar", "com.canonical.dbusmenu",
                           "GetLayout", GLib.Variant("(iias)", (0, -1, [])), "(u(ia{sv}av))")
        if layout is None:
            return {}
        return {child[0]: child[1].get("label") for child in layout.unpack()[1][2]}

    def choose(self, label):
        for number, text in self.menu().items():
            if text == label:
                self.record(f"menu {label}")
                self.call("local.vantora.Vantora", "/MenuBar", "com.canonical.dbusmenu", "Event",
                          GLib.Variant("(isvu)", (number, "clicked", GLib.Variant("s", ""), 0)))
                return True
        return False

    def start_again(self, program):
        """A second start asks the running agent to show its window; True when it ended well.
        Not tried while the agent has no connection to the bus."""
        if not self.menu():
            return True
        self.record("agent second start")
        try:
            return subprocess.run([program], env=self.environment, check=False, timeout=10,
                                  stdout=subprocess.DEVNULL,
                                  stderr=subprocess.DEVNULL).returncode == 0
        except subprocess.TimeoutExpired:
            return False

    # The screen.

    def start_screen(self):
        if not shutil.which("Xvfb"):
            return "no Xvfb: no tray"
        _, self.environment["DISPLAY"] = start_display(
            lambda command, **options: self.start("screen", command, **options), "1280x720",
            self.environment.get("DISPLAY") if "screen" in self.started else None)
        self.started.add("screen")
        return None

    def start_tray(self):
        if "screen" in self.processes and shutil.which("trayer"):
            self.record("panel trayer")
            self.start("tray", ["trayer", "--edge", "top", "--height", "24"])

    # The network: a pair of links in a namespace of its own.

    def ip(self, *commands):
        return subprocess.run(["ip", "-force", "-batch", "-"], input="\n".join(commands),
                              text=True, env=self.environment, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL, check=False).returncode == 0

    def start_network(self):
        if not shutil.which("ip"):
            return "no ip: no network"
        self.ip("link set lo up")
        return None if self.make_links() else "no links can be made: no network"

    def make_links(self):
        return self.ip("link add soak0 type veth peer name soak1", "link set soak1 up",
                       "link set soak0 up", "addr add 192.0.2.1/24 dev soak0",
                       "route add default via 192.0.2.2 dev soak0")

    def flap(self):
        """Takes something of the network away."""
        away = self.chance.choice(["link set soak0 down", "link del soak0",
                                   "addr flush dev soak0", "route del default",
                                   "link set soak1 down"])
        self.record(f"network {away}")
        self.ip(away)

    def mend_network(self):
        self.ip("link del soak0")
        self.make_links()

    def make_traffic(self, socket):
        try:
            socket.sendto(b"." * self.chance.randrange(60_000), ("192.0.2.2", 9))
        except OSError:
            pass

    # Sensors, batteries and fans.

    def start_machine(self):
        machine = Machine(self.folder / "class")
        lack = machine.mount()
        self.machine = None if lack else machine
        return lack

    def change_machine(self):
        """Other values, as a driver shows them; now and then a chip comes or goes."""
        chips = self.machine.devices()
        if chips and self.chance.random() < 0.05:
            self.machine.remove(self.chance.choice(chips))
        elif self.chance.random() < 0.1:
            self.machine.fill()
        for name, values in {"hwmon/hwmon0/fan1_input": [0, 2156, 6100],
                             "hwmon/hwmon0/fan2_input": [0, 0, 1998],
                             "hwmon/hwmon0/temp2_input": range(20_000, 40_000, 1_000),
                             "hwmon/hwmon1/temp1_input": range(30_000, 99_000, 1_000),
                             "power_supply/BAT0/capacity": range(100),
                             "power_supply/BAT0/status": ["Charging", "Discharging", "Full"],
                             "power_supply/BAT0/current_now": range(0, 3_000_000, 100_000),
                             "power_supply/ADP1/online": [0, 1]}.items():
            self.machine.set(name, self.chance.choice(values))
