# SPDX-License-Identifier: MIT
"""activation_test.py VANTORA-SETTINGS

The real settings window under a real Wayland compositor, which gives the keyboard only to
who shows a token of a click: the window takes the one that it is started with and the one
of a "raise", and nothing happens over one that is stale or used up. Ends with 77 where
something that it needs is not installed. Packages: sway, xvfb, xdotool, dbus-daemon,
qt6-wayland, python3-gi, gir1.2-gtk-3.0.
"""
import json
import os
import re
import shutil
import signal
import subprocess
import sys
import tempfile

from stage import SKIPPED, start_bus, start_display, until

TIMEOUT = 20  # seconds: allows for a loaded machine

SWAY = """
xwayland disable
output * resolution 1000x700
focus_follows_mouse no
focus_on_window_activation focus
for_window [title="launcher"] floating enable, border none, move position 0 0
for_window [app_id="local.vantora.Vantora"] floating enable, move position 300 100
"""


def skip(reason):
    print(f"activation_test: skipped: {reason}", file=sys.stderr)
    sys.exit(SKIPPED)


def launcher():
    """Another program: prints a token for each click on it, as a panel would give one."""
    import gi
    gi.require_version("Gtk", "3.0")
    from gi.repository import Gdk, Gio, Gtk
    window = Gtk.Window(title="launcher", default_width=200, default_height=200)
    button = Gtk.Button(label="token")

    def clicked(_button):
        context = Gdk.Display.get_default().get_app_launch_context()
        context.set_timestamp(Gtk.get_current_event_time())
        application = Gio.AppInfo.create_from_commandline("true", "true", 0)
        print(context.get_startup_notify_id(application, []), flush=True)

    button.connect("clicked", clicked)
    window.add(button)
    window.show_all()
    Gtk.main()


class Session:
    def __init__(self, settings):
        self.settings = settings
        self.home = tempfile.mkdtemp(prefix="vantora-e2e-")
        self.children = []
        runtime = self.home + "/run"
        os.mkdir(runtime, 0o700)
        for name in ("WAYLAND_DISPLAY", "DISPLAY", "XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"):
            os.environ.pop(name, None)
        os.environ.update(
            HOME=self.home, XDG_RUNTIME_DIR=runtime, XDG_CONFIG_HOME=self.home + "/config",
            XDG_CACHE_HOME=self.home + "/cache", XDG_DATA_HOME=self.home + "/data",
            GSETTINGS_BACKEND="memory", NO_AT_BRIDGE="1", LIBGL_ALWAYS_SOFTWARE="1")
        _, display = start_display(self.start, "1000x700")
        _, os.environ["DBUS_SESSION_BUS_ADDRESS"] = start_bus(self.start, runtime + "/bus")
        with open(self.home + "/sway.conf", "w", encoding="utf-8") as file:
            file.write(SWAY)
        self.start(["sway", "-c", self.home + "/sway.conf"],
                   env=dict(os.environ, DISPLAY=display, WLR_BACKENDS="x11", WLR_X11_OUTPUTS="1",
                            WLR_RENDERER="pixman"))
        socket = until("the compositor", lambda: [
            name for name in os.listdir(runtime) if name.startswith("sway-ipc.")])[0]
        until("the display", lambda: os.path.exists(runtime + "/wayland-1"))
        os.environ.update(SWAYSOCK=f"{runtime}/{socket}", WAYLAND_DISPLAY="wayland-1")
        self.display = display
        self.launcher = self.start([sys.executable, __file__, "--launcher"],
                                   stdout=subprocess.PIPE, text=True)
        until("the launcher", lambda: self.focused() == "launcher")

    def start(self, command, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        options.setdefault("stderr", subprocess.DEVNULL)
        child = subprocess.Popen(command, **options)
        self.children.append(child)
        return child

    def end(self):
        for child in reversed(self.children):
            if child.poll() is None:
                child.send_signal(signal.SIGKILL)
                child.wait()
        shutil.rmtree(self.home, ignore_errors=True)

    def focused(self):
        """The name of the window that has the keyboard."""
        def search(node):
            if node["focused"]:
                return node["name"]
            return next(filter(None, map(search, node["nodes"] + node["floating_nodes"])), None)
        answer = subprocess.run(["swaymsg", "-r", "-t", "get_tree"], capture_output=True,
                                check=True).stdout
        return search(json.loads(answer))

    def token(self):
        """Clicks on the other program, which has the keyboard then, for its token."""
        subprocess.run(["xdotool", "mousemove", "100", "100", "click", "1"], check=True,
                       env=dict(os.environ, DISPLAY=self.display))
        token = self.launcher.stdout.readline().strip()
        until("the launcher's focus", lambda: self.focused() == "launcher")
        if not re.fullmatch(r"\S+", token):
            raise SystemExit(f"activation_test: the compositor gave no token: {token!r}")
        return token


class Window:
    """The settings window with this test as its agent."""

    def __init__(self, session, token):
        self.log = session.home + "/wayland.log"
        self.sequence = 0
        with open(self.log, "w", encoding="utf-8") as log:
            self.program = session.start(
                [session.settings], stdin=subprocess.PIPE, stdout=subprocess.PIPE, stderr=log,
                text=True, env=dict(os.environ, QT_QPA_PLATFORM="wayland", WAYLAND_DEBUG="1",
                                    XDG_ACTIVATION_TOKEN=token, DESKTOP_STARTUP_ID=token))
        if self.hears().get("type") != "ready":
            raise SystemExit("activation_test: the window did not come")
        quota = {"message": "", "lastSuccess": None, "executable": "", "candidates": [],
                 "needsLogin": False}
        self.state(
            configuration={"schemaVersion": 1, "intervalSeconds": 2, "modules": [], "gap": 4,
                           "horizontalPadding": 3, "verticalPadding": 0, "lineGap": 0,
                           "paused": False},
            networkName=None, codex=quota, claude=quota, loginItemStatus="notRegistered",
            pendingScrollID=None, notice=None, undoable=None, links=[], backupPath="", readings=[],
            picture={
                "width": 0, "scale": 1, "columns": 0, "rows": 0, "alpha": "", "warning": None})

    def say(self, **message):
        self.program.stdin.write(json.dumps(message) + "\n")
        self.program.stdin.flush()

    def hears(self):
        return json.loads(self.program.stdout.readline() or "{}")

    def state(self, **fields):
        """Sends the window a state and waits until it has shown it."""
        self.sequence += 1
        self.say(type="state", sequence=self.sequence, revision=0, **fields)
        while (answer := self.hears()).get("type") == "ready":
            pass
        if answer != {"type": "seen", "sequence": self.sequence}:
            raise SystemExit(f"activation_test: the window answered {answer}")

    def raise_with(self, token):
        self.say(type="raise", activationToken=token)
        self.state(notice="depois")  # Answered after the raise was dealt with.

    def activations(self):
        """The tokens that the window showed to the compositor."""
        with open(self.log, encoding="utf-8", errors="replace") as log:
            return re.findall(r'xdg_activation_v1@\d+\.activate\("([^"]*)"', log.read())


def run(session):
    first = session.token()
    window = Window(session, first)
    until("the window's focus", lambda: session.focused() == "Configurações do Vantora")
    # The compositor may give it the keyboard before.
    until("the token", window.activations)
    if window.activations() != [first]:
        raise SystemExit(f"activation_test: shown at the start: {window.activations()}")
    print("1. the window took the token that it was started with")

    session.token()
    for token in ("stale-token", first, ""):
        window.raise_with(token)
    if session.focused() != "launcher":
        raise SystemExit("activation_test: came to the front without a token of use")
    print("2. a stale token, a used one and none changed nothing")

    for round_ in (3, 4):
        window.raise_with(session.token())
        until("the raised window's focus",
              lambda: session.focused() == "Configurações do Vantora")
        print(f"{round_}. the window came to the front with a fresh token")

    window.program.stdin.close()
    if window.program.wait(TIMEOUT) != 0:
        raise SystemExit(f"activation_test: the window ended with {window.program.returncode}")
    print("activation_test: all steps passed")


def main():
    if sys.argv[1] == "--launcher":
        launcher()
        return
    settings = os.path.abspath(sys.argv[1])
    for program in ("sway", "swaymsg", "Xvfb", "xdotool", "dbus-daemon"):
        if not shutil.which(program):
            skip(f"{program} is not installed")
    # sway refuses root.
    if os.geteuid() == 0:
        drop = ["setpriv", "--reuid", "nobody", "--regid", "nogroup", "--clear-groups"]
        if subprocess.run([*drop, "test", "-x", settings, "-a", "-r", __file__],
                          check=False).returncode != 0:
            skip(f"user nobody cannot run {settings}")
        os.execvpe("setpriv", [*drop, sys.executable, os.path.abspath(__file__), settings],
                   {"PATH": os.environ["PATH"], "LANG": "C.UTF-8"})
    needed = "import gi; gi.require_version('Gtk', '3.0'); from gi.repository import Gtk"
    if subprocess.run([sys.executable, "-c", needed], stderr=subprocess.DEVNULL,
                      check=False).returncode != 0:
        skip("gir1.2-gtk-3.0 is not installed")
    session = Session(settings)
    try:
        run(session)
    finally:
        session.end()


if __name__ == "__main__":
    main()
