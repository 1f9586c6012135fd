# SPDX-License-Identifier: MIT
"""What a machine and a session can do to the agent. Each disturbance begins, lasts for a few
seconds, and is undone by `end()`, after which everything around the agent works again."""
import ctypes
import os
import pathlib
import shutil
import signal
import subprocess
import threading

MADV_PAGEOUT = 21  # asm-generic/mman-common.h, since Linux 5.4
PROCESS_MADVISE = 440  # the system call's number on every architecture, since Linux 5.10
ATTRIBUTES = ["hwmon/hwmon0/temp2_input", "hwmon/hwmon0/fan1_input", "hwmon/hwmon1/temp1_input"]
SUPPLIES = ["power_supply/BAT0/status", "power_supply/BAT0/capacity",
            "power_supply/ADP1/online"]


class Disturbance:
    """`chaos` has the world, the agent and its family, and the chance that decides."""

    name = ""
    seconds = (1, 6)  # how long it lasts
    can_be_first = False  # whether the agent may be started while it goes on
    settling = 1  # seconds until it has its effect
    is_deafening = False  # whether the agent cannot be asked anything meanwhile

    def __init__(self, chaos):
        self.chaos = chaos
        self.world = chaos.world

    def lack(self):
        """Why this system cannot do it, or None."""
        return None

    def begin(self):
        """May answer False: there is nothing to disturb now."""
        raise NotImplementedError

    def end(self):
        pass


class Part(Disturbance):
    """A process of the world, by its part."""

    part = ""

    def process(self):
        process = self.world.processes.get(self.part)
        return process if process is not None and process.poll() is None else None


class Silent(Part):
    """Stopped: its sockets accept, and nothing answers."""

    can_be_first = True

    def begin(self):
        self.stopped = self.process()
        if self.stopped is None:
            return False
        self.stopped.send_signal(signal.SIGSTOP)
        return True

    def end(self):
        if self.stopped.poll() is None:
            self.stopped.send_signal(signal.SIGCONT)


class Killed(Part):
    def begin(self):
        process = self.process()
        if process is None:
            return False
        process.kill()
        process.wait()
        return True

    def end(self):
        self.world.processes.pop(self.part, None)
        self.start()

    def start(self):
        raise NotImplementedError


class BusSilent(Silent):
    name, part, is_deafening = "bus silent", "bus", True


class BusKilled(Killed):
    name, part, is_deafening = "bus killed", "bus", True

    def start(self):
        for part in ("panel", "logind"):
            self.world.stop(part)
        self.world.start_bus()
        self.world.start_panel("waybar")


class DisplaySilent(Silent):
    name, part = "display silent", "screen"


class DisplayKilled(Killed):
    name, part = "display killed", "screen"

    def start(self):
        self.world.stop("tray")
        self.world.start_screen()


class TrayDisplaySilent(DisplaySilent):
    """The display on which the item is a docked window."""

    name, seconds, can_be_first = "display silent under a tray", (10, 18), False
    settling = 9  # the agent looks for a tray once no panel has come for five seconds

    def begin(self):
        if self.process() is None or not shutil.which("trayer"):
            return False
        self.stopped = self.process()
        self.world.stop("panel")
        self.world.start_tray()
        self.timer = threading.Timer(self.settling - 2, self.silence)
        self.timer.start()
        return True

    def silence(self):
        if self.stopped.poll() is None:
            self.stopped.send_signal(signal.SIGSTOP)

    def end(self):
        self.timer.cancel()
        self.timer.join()
        super().end()
        self.world.stop("tray")
        self.world.start_panel("waybar")


class PanelSilent(Silent):
    name, part = "panel silent", "panel"


class PanelKilled(Killed):
    name, part = "panel killed", "panel"
    seconds = (0.2, 12)  # the agent looks for a tray once no panel has come for five seconds

    def begin(self):
        if not super().begin():
            return False
        if self.chaos.chance.random() < 0.5:
            self.world.start_tray()
        return True

    def start(self):
        self.world.stop("tray")
        self.world.start_panel(self.chaos.chance.choice(self.chaos.panels))


class Children(Disturbance):
    """One of the agent's children, by the names of their programs."""

    names = ()

    def choose(self):
        living = [pid for pid, _, name in self.chaos.family.look()[0] if name in self.names]
        return self.chaos.chance.choice(living) if living else None

    @staticmethod
    def send(pid, number):
        try:
            os.kill(pid, number)
        except ProcessLookupError:
            pass


class ChildKilled(Children):
    seconds = (0, 0)

    def begin(self):
        pid = self.choose()
        if pid is None:
            return False
        self.send(pid, signal.SIGKILL)
        return True


class ChildSilent(Children):
    def begin(self):
        self.pid = self.choose()
        if self.pid is None:
            return False
        self.send(self.pid, signal.SIGSTOP)
        return True

    def end(self):
        self.send(self.pid, signal.SIGCONT)


class WindowKilled(ChildKilled):
    name, names = "window killed", ("vantora-settings",)


class WindowSilent(ChildSilent):
    name, names = "window silent", ("vantora-settings",)


class ToolKilled(ChildKilled):
    name, names = "quota tool killed", ("codex", "claude")


class ToolSilent(ChildSilent):
    name, names = "quota tool silent", ("codex", "claude")


class AgentStopped(Disturbance):
    name, is_deafening = "agent stopped", True

    def begin(self):
        self.chaos.agent.send_signal(signal.SIGSTOP)
        return True

    def end(self):
        self.chaos.agent.send_signal(signal.SIGCONT)


class IoVector(ctypes.Structure):
    _fields_ = [("base", ctypes.c_void_p), ("length", ctypes.c_size_t)]


class AgentPagedOut(Disturbance):
    """Every page of the agent, written ones where there is swap."""

    name, seconds = "agent paged out", (0, 0)

    def ranges(self):
        maps = pathlib.Path(f"/proc/{self.chaos.agent.pid}/maps").read_text(encoding="utf-8")
        for line in maps.splitlines():
            if "[v" not in line:  # the kernel's own: [vvar], [vdso], [vsyscall]
                low, high = (int(word, 16) for word in line.split()[0].split("-"))
                yield low, high - low

    def begin(self):
        process = os.pidfd_open(self.chaos.agent.pid)
        libc = ctypes.CDLL(None, use_errno=True)
        done = 0
        for base, length in self.ranges():
            vector = IoVector(base, length)
            done += libc.syscall(PROCESS_MADVISE, process, ctypes.byref(vector),
                                 ctypes.c_size_t(1), MADV_PAGEOUT, 0) > 0
        os.close(process)
        return done > 0


class Swap:
    """A compressed swap of 64 MiB in memory, unless the machine has swap already. To be taken
    before /sys/class is mounted over, and given back after."""

    def __init__(self):
        self.number = None
        self.control = pathlib.Path("/sys/class/zram-control")

    def take(self):
        """None, or why there is no swap."""
        if len(pathlib.Path("/proc/swaps").read_text(encoding="utf-8").splitlines()) > 1:
            return None
        try:
            self.number = int((self.control / "hot_add").read_text(encoding="utf-8"))
            pathlib.Path(f"/sys/block/zram{self.number}/disksize").write_text(
                "64M", encoding="utf-8")
            for command in ("mkswap", "swapon"):
                subprocess.run([command, f"/dev/zram{self.number}"], check=True,
                               capture_output=True)
            return None
        except (OSError, subprocess.CalledProcessError):
            self.give_back()
            return "no swap can be had: only the pages of files are paged out"

    def give_back(self):
        if self.number is not None:
            subprocess.run(["swapoff", f"/dev/zram{self.number}"], check=False,
                           capture_output=True)
            try:
                (self.control / "hot_remove").write_text(str(self.number), encoding="utf-8")
            except OSError:
                pass
            self.number = None


class DriverHung(Disturbance):
    name, seconds, can_be_first = "driver hung", (2, 10), True
    attributes = ATTRIBUTES

    def lack(self):
        if not self.chaos.has_machine:
            return "no sensors of one's own"
        return None if self.world.machine.gate else self.world.machine.guard()

    def begin(self):
        self.attribute = self.chaos.chance.choice(self.attributes)
        self.world.machine.hang(self.attribute)
        return True

    def end(self):
        self.world.machine.release(self.attribute)


class BatteryHung(DriverHung):
    name, attributes = "battery hung", SUPPLIES


class SensorsChange(Disturbance):
    name, seconds = "sensors change", (0.5, 4)

    def lack(self):
        return None if self.chaos.has_machine else "no sensors of one's own"

    def begin(self):
        self.world.change_machine()
        return True

    def end(self):
        self.world.machine.fill()


class DiskFull(Disturbance):
    """The file system of the configuration, a small one."""

    name = "disk full"

    def lack(self):
        if not self.chaos.is_isolated:
            return "nothing can be mounted"
        folder = self.chaos.folder / "home/config"
        if folder.is_mount():
            return None
        folder.mkdir(exist_ok=True)
        mounted = subprocess.run(["mount", "-t", "tmpfs", "-o", "size=256k,mode=700", "none",
                                  folder], capture_output=True, check=False).returncode == 0
        return None if mounted else "no small disk can be mounted"

    def begin(self):
        self.ballast = self.chaos.folder / "home/config/ballast"
        with open(self.ballast, "wb", buffering=0) as file:
            try:
                while file.write(b"#" * 4096):
                    pass
            except OSError:
                pass
        return True

    def end(self):
        self.ballast.unlink(missing_ok=True)


class LinksFlap(Disturbance):
    name, seconds = "links flap", (0.5, 4)

    def lack(self):
        return None if self.chaos.has_network else "no network of one's own"

    def begin(self):
        self.world.flap()
        return True

    def end(self):
        self.world.mend_network()


class MachineSleeps(Disturbance):
    name, seconds = "machine sleeps", (0.2, 3)

    def begin(self):
        self.world.sleep(True)
        return True

    def end(self):
        self.world.sleep(False)


ALL = [BusSilent, BusKilled, DisplaySilent, DisplayKilled, TrayDisplaySilent, PanelSilent,
       PanelKilled, WindowKilled, WindowSilent, ToolKilled, ToolSilent, AgentStopped,
       AgentPagedOut, DriverHung, BatteryHung, SensorsChange, DiskFull, LinksFlap, MachineSleeps]
# Two of a group would undo each other.
GROUPS = [{"bus silent", "bus killed", "panel silent", "panel killed", "machine sleeps",
           "display silent under a tray"},
          {"display silent", "display killed", "display silent under a tray"},
          {"driver hung", "battery hung", "sensors change"}]
