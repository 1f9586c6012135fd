# SPDX-License-Identifier: MIT
"""Whether a run was flat, and the table that shows it.

The run is cut into spans, each with a rest at its end, and judged from the end of its first
sixth on: the tenth minute of an hour. Flat means

- never a zombie, never more children than the agent may have, none older than its deadline;
- at every rest the same number of descriptors and of threads, and no child;
- between the rests never another number of threads, and no more descriptors than those at
  rest, four for each of the most children, and a few that are open for a moment;
- memory, anonymous and resident, as the floor of each span, the tenth percentile of its
  samples: no last floor more than MAX_STEP above the first, and in a run of an
  hour or more no straight line of least squares that rises by more than MAX_GROWTH at a
  certainty of 95 % (one-sided, by Student's t). What is above the floor was given back a
  moment later; a leak lifts the floor. The most growth that a run does not exclude is
  printed. In its first ten minutes the agent's store of glyphs fills, and the heap finds
  its shape: a line through those says nothing.

Anonymous memory is what a leak fills. What is resident besides are pages of the program's
own files, which come when code runs for the first time, and which the agent gives back
every ten minutes.
"""
import math
import statistics

MAX_GROWTH = 64  # KiB an hour
LONG_ENOUGH = 3600  # seconds, for a line
MAX_STEP = {"anonymous_kib": 256, "rss_kib": 1024}  # KiB
NAMES = {"anonymous_kib": "anonymous memory", "rss_kib": "resident memory"}
# One conversation each with Codex and Claude Code, and those that were ended in the last
# three seconds, one of each a second: each a child, perhaps one of its own, and its guard.
# Besides a window and one that was just ended, with their guards.
MAX_CHILDREN = 2 * (1 + 3) * 3 + 2 * 2
# Claude Code may take 45 s, what is ended 2.5 s; the rest is for a busy machine.
MAX_AGE = 60
MOMENTARY = 8
DESCRIPTORS_A_CHILD = 4  # its three streams, and its guard
# Student's t at 0.95 by degrees of freedom.
STUDENT = [math.inf, 6.31, 2.92, 2.35, 2.13, 2.02, 1.94, 1.89, 1.86, 1.83, 1.81]


def span(length):
    """Seconds from one rest to the next: a twelfth of the run, but a minute at least."""
    return max(60, length / 12)


def spans(samples, length):
    """The samples by span, the unfinished last one aside."""
    groups = {}
    for sample in samples:
        groups.setdefault(int(sample["second"] // span(length)), []).append(sample)
    return [group for _, group in sorted(groups.items())
            if any(sample["phase"] == "rest" for sample in group)]


def judged(samples, length):
    return [group for group in spans(samples, length) if group[0]["second"] >= length / 6 - 1]


def line(points):
    """Slope and its standard error by least squares; a finite number of three points or more."""
    xs, ys = zip(*points)
    x_mean, y_mean = statistics.fmean(xs), statistics.fmean(ys)
    spread = sum((x - x_mean) ** 2 for x in xs)
    slope = sum((x - x_mean) * (y - y_mean) for x, y in points) / spread
    residual = sum((y - y_mean - slope * (x - x_mean)) ** 2 for x, y in points)
    return slope, math.sqrt(residual / (len(points) - 2) / spread)


def floor(group, column):
    values = sorted(sample[column] for sample in group)
    return values[len(values) // 10]


def growth(groups, column):
    """KiB an hour, and how far from it the true value is at most in one direction."""
    slope, error = line([(statistics.fmean(sample["second"] for sample in group) / 3600,
                          floor(group, column)) for group in groups])
    return slope, STUDENT[min(len(groups) - 2, len(STUDENT) - 1)] * error


def judge(samples, length, memory=True):
    """What is not flat, as sentences; with or without memory."""
    groups = judged(samples, length)
    if len(groups) < 3:
        return ["the run was too short to judge: three spans after the first sixth are needed"]
    faults = judge_children(samples)
    late = [sample for group in groups for sample in group]
    rests = [sample for sample in late if sample["phase"] == "rest"]
    for column in ("descriptors", "threads"):
        numbers = [sample[column] for sample in rests]
        if len(set(numbers)) > 1:
            faults.append(f"{column} at rest: {', '.join(map(str, numbers))}")
    if any(sample["children"] for sample in rests):
        faults.append("there were children at rest")
    threads = {sample["threads"] for sample in late}
    if len(threads) > 1:
        faults.append(f"between {min(threads)} and {max(threads)} threads")
    most = max(sample["descriptors"] for sample in rests) + MOMENTARY + \
        DESCRIPTORS_A_CHILD * max(sample["children"] for sample in late)
    if max(sample["descriptors"] for sample in late) > most:
        faults.append(f"more than {most} descriptors")
    if memory:
        faults += judge_memory(groups, length)
    return faults


def judge_memory(groups, length):
    faults = []
    for column, name in NAMES.items():
        slope, error = growth(groups, column)
        if slope - error > MAX_GROWTH and length >= LONG_ENOUGH:
            faults.append(f"{name} grows by {slope:.0f} ± {error:.0f} KiB an hour")
        first, last = floor(groups[0], column), floor(groups[-1], column)
        if last > first + MAX_STEP[column]:
            faults.append(f"{name} went from {first} to {last} KiB")
    return faults


def judge_children(samples):
    faults = []
    zombies = sum(1 for sample in samples if sample["zombies"])
    if zombies:
        faults.append(f"zombies in {zombies} samples")
    most = max(sample["children"] for sample in samples)
    if most > MAX_CHILDREN:
        faults.append(f"{most} children, more than {MAX_CHILDREN}")
    oldest = max(sample["oldest_assistant"] for sample in samples)
    if oldest > MAX_AGE:
        faults.append(f"a quota child of {oldest:.0f} s, more than {MAX_AGE}")
    return faults


def table(samples, length):
    """The lines of the table: a span each."""
    lines = ["          ---- resident ----  ---- anonymous ---   most of the span       a minute"
             "      -- at rest --",
             "minute    floor median  most  floor median  most   fds threads children  CPU ms"
             " switches  fds threads"]
    before = None
    for group in spans(samples, length):
        first, last = before or group[0], group[-1]
        minutes = (last["second"] - first["second"]) / 60
        words = [f"{last['second'] / 60:6.1f} "]
        for column in ("rss_kib", "anonymous_kib"):
            values = [sample[column] for sample in group]
            words.append(f"{floor(group, column):8}{statistics.median(values):7.0f}"
                         f"{max(values):6}")
        for column, width in (("descriptors", 6), ("threads", 8), ("children", 9)):
            words.append(f"{max(sample[column] for sample in group):{width}}")
        for column in ("cpu_ms", "voluntary"):
            words.append(f"{(last[column] - first[column]) / minutes:8.0f}")
        rest = next(sample for sample in group if sample["phase"] == "rest")
        words.append(f"  {rest['descriptors']:5}{rest['threads']:8}")
        lines.append("".join(words))
        before = last
    groups = judged(samples, length)
    if len(groups) >= 3:
        lines.append(f"From minute {groups[0][0]['second'] / 60:.0f} on, the floor of")
        for column, name in NAMES.items():
            slope, error = growth(groups, column)
            lines.append(f"  {name}: {slope:+.0f} KiB an hour, no more than {slope + error:+.0f}"
                         " at 95 %")
    return lines
