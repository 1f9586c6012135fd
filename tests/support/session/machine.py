# SPDX-License-Identifier: MIT
"""Sensors, batteries and fans: a folder mounted over /sys/class in a mount namespace."""
import ctypes
import os
import pathlib
import select
import shutil
import struct
import subprocess
import threading

DESCRIPTIONS = pathlib.Path(__file__).resolve().parents[2] / "platform/linux/sysfs"
# linux/fanotify.h
FAN_CLOEXEC, FAN_CLASS_CONTENT = 0x1, 0x4
FAN_MARK_ADD, FAN_MARK_MOUNT = 0x1, 0x10
FAN_ACCESS_PERM, FAN_ALLOW = 0x20000, 0x1
AT_FDCWD = -100


def isolated(arguments, marker, network=True):
    """`arguments` in namespaces of their own for mounts and, unless told otherwise, network:
    replaces this process, whose environment then has `marker`. Returns where the system
    refuses, or where this process is that one."""
    if os.environ.get(marker) == "1" or not shutil.which("unshare"):
        return
    kinds = ["--mount", *(["--net"] if network else [])]
    for command in (["unshare", *kinds], ["unshare", "--map-root-user", *kinds]):
        if subprocess.run([*command, "true"], capture_output=True, check=False).returncode == 0:
            os.environ[marker] = "1"
            os.execvp(command[0], [*command, *arguments])


class Gate:
    """Decides over every read below a mount point, which the kernel asks it for (fanotify(7)):
    allowed, but for those of an attribute that hangs, which wait until it is released. Needs
    CAP_SYS_ADMIN; OSError without it. Files that were open before are not asked for."""

    EVENT = struct.Struct("=IBBHQii")  # fanotify_event_metadata
    RESPONSE = struct.Struct("=iI")

    def __init__(self, mount_point):
        libc = ctypes.CDLL(None, use_errno=True)
        self.group = libc.fanotify_init(FAN_CLASS_CONTENT | FAN_CLOEXEC, os.O_RDONLY)
        if self.group < 0:
            raise OSError(ctypes.get_errno(), "fanotify_init")
        if libc.fanotify_mark(self.group, FAN_MARK_ADD | FAN_MARK_MOUNT,
                              ctypes.c_uint64(FAN_ACCESS_PERM), AT_FDCWD,
                              os.fsencode(mount_point)) != 0:
            error = ctypes.get_errno()
            os.close(self.group)
            raise OSError(error, "fanotify_mark")
        self.hanging = set()  # ends of paths
        self.waiting = []  # descriptors of the reads that wait
        self.lock = threading.Lock()
        self.wake, self.end = os.pipe2(os.O_CLOEXEC)
        self.thread = threading.Thread(target=self._serve, daemon=True)
        self.thread.start()

    def hang(self, attribute):
        with self.lock:
            self.hanging.add("/" + attribute)

    def release(self, attribute):
        with self.lock:
            self.hanging.discard("/" + attribute)
            for file in self.waiting:
                self._allow(file)
            self.waiting.clear()

    def close(self):
        """Lets every read go on, for good."""
        os.close(self.end)
        self.thread.join()
        os.close(self.wake)
        os.close(self.group)

    def _allow(self, file):
        os.write(self.group, self.RESPONSE.pack(file, FAN_ALLOW))
        os.close(file)

    def _serve(self):
        while self.wake not in select.select([self.group, self.wake], [], [])[0]:
            events = os.read(self.group, 4096)
            with self.lock:
                while events:
                    length, _, _, _, _, file, _ = self.EVENT.unpack_from(events)
                    events = events[length:]
                    path = os.readlink(f"/proc/self/fd/{file}")
                    if any(path.endswith(attribute) for attribute in self.hanging):
                        self.waiting.append(file)
                    else:
                        self._allow(file)


class Machine:
    def __init__(self, folder, description="macbook-pro-2015"):
        self.folder = pathlib.Path(folder)
        self.description = DESCRIPTIONS / (description + ".txt")
        self.gate = None

    def mount(self):
        """Puts the folder over /sys/class; what /sys/class/net holds stays. None, or why
        not. Only in a mount namespace of one's own."""
        made = subprocess.run(
            ["sh", "-ec", """mount --make-rprivate /
             mount -t sysfs none /sys 2> /dev/null || true
             mkdir -p "$0/net"
             mount --bind /sys/class/net "$0/net"
             mount --rbind "$0" /sys/class""", self.folder],
            stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False).returncode == 0
        if not made:
            return "nothing can be mounted: no sensors but the machine's own"
        self.fill()
        return None

    def guard(self):
        """Makes `hang()` possible for files that are opened from now on. None, or why not."""
        try:
            self.gate = Gate("/sys/class")
        except OSError as error:
            return f"no driver can be made to hang: {error.strerror}"
        return None

    def unmount(self):
        if self.gate is not None:
            self.gate.close()
        subprocess.run(["umount", "--recursive", "--lazy", "/sys/class"], check=False)
        subprocess.run(["umount", "--lazy", self.folder / "net"], check=False)

    def fill(self):
        """Every device and value of the description."""
        folder = self.folder
        for line in self.description.read_text(encoding="utf-8").splitlines():
            if line.startswith("["):
                folder = self.folder / line.strip("[]")
                folder.mkdir(parents=True, exist_ok=True)
            elif "=" in line and "->" not in line and not line.startswith("#"):
                name, _, value = line.partition("=")
                (folder / name).write_text(value + "\n", encoding="utf-8")

    def set(self, attribute, value):
        """Where the attribute's device is there."""
        file = self.folder / attribute
        if file.exists():
            file.write_text(f"{value}\n", encoding="utf-8")

    def devices(self):
        return [device for device in sorted(self.folder.glob("*/*/"))
                if device.parent.name != "net"]

    def remove(self, device):
        # A file that is open still reads after its end; the kernel's would fail, and an empty
        # one is no number either.
        for attribute in pathlib.Path(device).iterdir():
            attribute.write_bytes(b"")
        shutil.rmtree(device, ignore_errors=True)

    def hang(self, attribute):
        """No read of the attribute returns until `release()`."""
        self.gate.hang(attribute)

    def release(self, attribute):
        self.gate.release(attribute)
