# SPDX-License-Identifier: MIT
"""The laptop that all programs are measured on: namespaces of their own for mounts and network,
and in them a battery, an adapter, temperatures, one network link and the processors' counters.
The programs are not told; the files lie over those that they read anyway."""
import contextlib
import os
import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).resolve().parent
sys.path.insert(0, str(HERE.parents[1] / "tests/support"))
from session.machine import Machine, isolated  # noqa: E402

DESCRIPTION = "dell-xps-13-9370"
TEMPERATURE = "52000"  # its hottest core, in thousandths of a degree
LINK, PEER = "eth0", "far"
ADDRESS = "02:00:00:00:00:02"
APART = "VANTORA_BENCH_APART"


class Unavailable(Exception):
    """This machine lets nobody make such a laptop; says why."""


def go_apart():
    """Starts this script anew in namespaces of its own, unless it is there."""
    isolated([sys.executable, *sys.argv], APART)
    if os.environ.get(APART) != "1":
        raise Unavailable("this user may not make namespaces for mounts and network. Run it as "
                          "root, or allow user namespaces (kernel.unprivileged_userns_clone, "
                          "user.max_user_namespaces)")


def uevent(name, attributes):
    """What the kernel writes into a power supply's uevent: all its attributes in one."""
    lines = [f"POWER_SUPPLY_NAME={name}"]
    lines += [f"POWER_SUPPLY_{key.upper()}={value}" for key, value in sorted(attributes.items())]
    return "\n".join(lines) + "\n"


def fill(folder):
    """/sys/class of the laptop."""
    folder = pathlib.Path(folder)
    Machine(folder, DESCRIPTION).fill()
    for supply in (folder / "power_supply").iterdir():
        attributes = {each.name: each.read_text(encoding="utf-8").strip()
                      for each in supply.iterdir()}
        (supply / "uevent").write_text(uevent(supply.name, attributes), encoding="utf-8")
    zone = folder / "thermal/thermal_zone0"
    zone.mkdir(parents=True)
    (zone / "type").write_text("x86_pkg_temp\n", encoding="ascii")
    (zone / "temp").write_text(TEMPERATURE + "\n", encoding="ascii")
    link = folder / "net" / LINK
    (link / "device").mkdir(parents=True)
    for name, value in {"address": ADDRESS, "type": "1", "operstate": "up", "carrier": "1",
                        "speed": "1000", "duplex": "full", "mtu": "1500"}.items():
        (link / name).write_text(value + "\n", encoding="ascii")
    # The kernel's own, of the link in this network namespace.
    (link / "statistics").symlink_to(f"/sys/devices/virtual/net/{LINK}/statistics")


def shell(script, *arguments):
    done = subprocess.run(["sh", "-ec", script, *map(str, arguments)], capture_output=True,
                          text=True, check=False)
    if done.returncode != 0:
        raise Unavailable("nothing can be mounted here, or no network link made: "
                          + done.stderr.strip())


def build(folder):
    """Puts the laptop over what is here; its files are below `folder`."""
    folder = pathlib.Path(folder)
    fill(folder / "class")
    shell("""
        mount --make-rprivate /
        cat /proc/stat > "$0/stat"
        for name in all default; do
          echo 1 > /proc/sys/net/ipv6/conf/$name/disable_ipv6 2> /dev/null || true
        done
        ip link set lo up
        # In this order, so that the laptop's end comes first in lists.
        ip link add "$2" type veth peer name "$1" address "$3"
        ip address add 192.0.2.2/24 dev "$1"
        ip link set "$2" up
        ip link set "$1" up
        ip route add default via 192.0.2.1
        mount -t sysfs none /sys
        cat "/sys/class/net/$1/ifindex" > "$0/class/net/$1/ifindex"
        mount --bind "$0/class" /sys/class
        mount --bind "$0/stat" /proc/stat
        # The kernel's own files keep no times, which the first reader after a write would pay.
        mount -o remount,bind,noatime /sys/class
        mount -o remount,bind,noatime /proc/stat
        """, folder, LINK, PEER, ADDRESS)


@contextlib.contextmanager
def feeding(mode, folder):
    """While the readings stand still or move."""
    feeder = subprocess.Popen([sys.executable, HERE / "feed.py", mode,
                               pathlib.Path(folder) / "stat", LINK, PEER], stdin=subprocess.PIPE)
    try:
        yield feeder
    finally:
        feeder.stdin.close()
        feeder.wait()
