# SPDX-License-Identifier: MIT
"""Figures of a process and of those that it started, from /proc (proc(5))."""
import os
import pathlib

COLUMNS = ["rss_kib", "pss_kib", "anonymous_kib", "descriptors", "threads", "cpu_ms",
           "voluntary", "involuntary"]
TICKS = os.sysconf("SC_CLK_TCK")


def stat(pid):
    """State, parent, group and start (clock ticks since boot); None when it is gone."""
    try:
        fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    except OSError:
        return None
    return {"state": fields[0], "parent": int(fields[1]), "group": int(fields[2]),
            "start": int(fields[19])}


def age(start):
    uptime = float(pathlib.Path("/proc/uptime").read_text().split()[0])
    return uptime - start / TICKS


def of(pid):
    """The figures of COLUMNS."""
    folder = pathlib.Path(f"/proc/{pid}")
    memory = {}
    for line in (folder / "smaps_rollup").read_text().splitlines()[1:]:
        key, value = line.split(":")
        memory[key] = int(value.split()[0])
    threads = voluntary = involuntary = 0
    for thread in (folder / "task").iterdir():
        threads += 1
        for line in (thread / "status").read_text().splitlines():
            if line.startswith("voluntary_ctxt"):
                voluntary += int(line.split()[1])
            elif line.startswith("nonvoluntary_ctxt"):
                involuntary += int(line.split()[1])
    cpu = (folder / "stat").read_text().rpartition(")")[2].split()
    return {"rss_kib": memory["Rss"], "pss_kib": memory["Pss"],
            "anonymous_kib": memory["Anonymous"],
            "descriptors": len(os.listdir(folder / "fd")), "threads": threads,
            "cpu_ms": (int(cpu[11]) + int(cpu[12])) * 1000 // TICKS,
            "voluntary": voluntary, "involuntary": involuntary}


def thread_names(pid):
    """As the kernel has them, cut to 15 characters."""
    return sorted((task / "comm").read_text().strip()
                  for task in pathlib.Path(f"/proc/{pid}/task").iterdir())


def swapped(pid):
    """KiB of the process that are in swap."""
    for line in pathlib.Path(f"/proc/{pid}/status").read_text().splitlines():
        if line.startswith("VmSwap:"):
            return int(line.split()[1])
    return 0


def descriptors(pid):
    """What its descriptors are, sorted."""
    names = []
    for entry in os.scandir(f"/proc/{pid}/fd"):
        try:
            names.append(os.readlink(entry.path))
        except OSError:
            pass
    return sorted(names)


class Family:
    """The processes that the agent started, found by a variable of its environment, so that
    those whose parent has ended are among them; and its zombies, found by their parent."""

    def __init__(self, agent, mark, own):
        """`own()` are the numbers of the processes that this program itself waits for. All
        others that come to it when their parent ends (PR_SET_CHILD_SUBREAPER) are reaped."""
        self.agent = agent
        self.mark = mark.encode()
        self.own = own
        self.known = {}  # (pid, start): whether it is of the family

    def look(self):
        """Living members as (pid, seconds of age, name), and the agent's zombies."""
        living, zombies, seen = [], [], {}
        for entry in os.listdir("/proc"):
            if not entry.isdigit() or int(entry) == self.agent:
                continue
            pid = int(entry)
            found = stat(pid)
            if found is None:
                continue
            if found["state"] in "ZX":
                if found["parent"] == self.agent:
                    zombies.append(pid)
                elif found["parent"] == os.getpid() and pid not in self.own():
                    os.waitpid(pid, os.WNOHANG)
                continue
            key = pid, found["start"]
            is_member = self.known.get(key)
            if not is_member:  # a program that has just been started is not yet marked
                is_member = found["parent"] == self.agent or self.is_marked(pid)
            seen[key] = is_member
            if is_member:
                living.append((pid, age(found["start"]), self.name(pid)))
        self.known = seen
        return living, zombies

    def is_marked(self, pid):
        try:
            return self.mark in pathlib.Path(f"/proc/{pid}/environ").read_bytes().split(b"\0")
        except OSError:
            return False

    @staticmethod
    def name(pid):
        try:
            arguments = pathlib.Path(f"/proc/{pid}/cmdline").read_bytes().split(b"\0")
        except OSError:
            return "?"
        paths = [os.path.basename(argument.decode()) for argument in arguments[:3]
                 if b"/" in argument]
        return paths[-1] if paths else "?"
