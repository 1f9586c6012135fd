# SPDX-License-Identifier: MIT
"""What a process has used so far, and the table of it."""
import pathlib
import time

COLUMNS = ("CPU ms/min", "switches/min", "RSS MB", "PSS MB", "Anonymous MB", "calls/s")


def cpu_seconds(pid):
    # clock_getcpuclockid(3): the clock of another process, CPUCLOCK_SCHED.
    return time.clock_gettime((~pid << 3) | 2)


def switches_in(status):
    """The voluntary ones in a /proc/PID/status."""
    return sum(int(line.split()[1]) for line in status.splitlines()
               if line.startswith("voluntary_ctxt_switches"))


def switches(pid):
    return sum(switches_in((thread / "status").read_text())
               for thread in pathlib.Path(f"/proc/{pid}/task").iterdir())


def memory_in(rollup):
    """RSS, PSS and Anonymous of a smaps_rollup, in MB of 1024 kB, as they are."""
    values = {}
    for line in rollup.splitlines()[1:]:
        key, value = line.split(":")
        values[key] = int(value.split()[0]) / 1024
    return {f"{name} MB": values[key]
            for name, key in (("RSS", "Rss"), ("PSS", "Pss"), ("Anonymous", "Anonymous"))}


def memory(pid):
    return memory_in(pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text())


def calls_in(summary):
    """The number of calls in strace's summary (-c); its line of totals may lack the column of
    errors, and without any call there is no such line."""
    for line in summary.splitlines():
        fields = line.split()
        if fields and fields[-1] == "total":
            return int(fields[3])
    return 0


class Span:
    """What a process uses from now on, until `row()`."""

    def __init__(self, pid, clock=time.monotonic, cpu=cpu_seconds, woken=switches):
        self.pid, self.clock, self.cpu, self.woken = pid, clock, cpu, woken
        self.before = cpu(pid), woken(pid), clock()

    def row(self):
        minutes = (self.clock() - self.before[2]) / 60
        return {"CPU ms/min": (self.cpu(self.pid) - self.before[0]) * 1000 / minutes,
                "switches/min": (self.woken(self.pid) - self.before[1]) / minutes}


def cell(value, base):
    """A figure, and what of Vantora's it is."""
    ratio = f"{value / base:.2f}x" if base else "-"
    return f"{value:.1f} ({ratio})"


def table(rows):
    """The rows, by title, as text; the ratios are to the first."""
    base = next(iter(rows.values()))
    columns = [column for column in COLUMNS if column in base]
    lines = [f"{'program':24}" + "".join(f"{column:>20}" for column in columns)]
    for title, row in rows.items():
        lines.append(f"{title:24}" + "".join(f"{cell(row[column], base[column]):>20}"
                                             for column in columns))
    return "\n".join(lines)
