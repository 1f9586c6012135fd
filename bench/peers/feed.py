#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""feed.py MODE STAT LINK PEER: moves what every program reads, until its standard input ends.

Every 0.25 s it writes the processors' counters into the file STAT, which lies over /proc/stat,
and sends frames over LINK and over PEER, the other end of the same cable, so that the kernel's
own counters of LINK move. In the mode "still" the processors are busy to the same share all the
time and no frame is sent; in "moving" both differ from each second to the next."""
import os
import pathlib
import select
import socket
import sys
import time

STEP = 0.25  # seconds
STEPS = 4  # a second
TICKS = 25  # of USER_HZ in a step, for each processor
LEVELS = 9
STILL_SHARE = 0.16
FRAME = 1250  # bytes
# Above it no counter changes its number of digits while it is measured.
START = 100_000_000


def level(step):
    """Another one each second: a sawtooth, so that a second that begins anywhere, half in
    one level and half in the next, differs from the one after it as well."""
    return step // STEPS % LEVELS


def share(mode, step):
    """How busy the processors are in this step. A whole number of ticks."""
    return STILL_SHARE if mode == "still" else 0.08 * (1 + level(step))


def frames(mode, step):
    """How many go each way in this step."""
    return 0 if mode == "still" else 6 + 4 * level(step)


def busy_ticks(mode, steps):
    """Of one processor, in all of the first `steps`."""
    return sum(round(share(mode, step) * TICKS) for step in range(steps))


def stat(rest, processors, busy, total):
    """The text of proc_stat(5): `busy` of `total` ticks for each processor, and `rest`, the
    lines after those of the processors."""
    def line(name, count):
        user, idle = (START + busy) * count, (START + total - busy) * count
        return f"{name} {user} 0 0 {idle} 0 0 0 0 0 0\n"

    return (line("cpu ", processors) + "".join(line(f"cpu{each}", 1) for each in range(processors)) +
            rest)


def other_lines(text):
    return "".join(line + "\n" for line in text.splitlines() if not line.startswith("cpu"))


def end_of(name):
    """One end of the cable, for whole frames."""
    end = socket.socket(socket.AF_PACKET, socket.SOCK_RAW)
    end.bind((name, 0))
    return end


def main():
    mode, file, link, peer = sys.argv[1:]
    rest = other_lines(pathlib.Path(file).read_text(encoding="ascii"))
    processors, busy = os.cpu_count(), 0
    # To nobody, of a protocol for experiments (IEEE 802): the kernel counts and drops it.
    frame = (b"\x02" + bytes(11) + b"\x88\xb5").ljust(FRAME, b"\0")
    ends = [end_of(link), end_of(peer)]
    target = os.open(file, os.O_WRONLY)
    start = time.monotonic()
    step = 0
    while True:
        os.pwrite(target, stat(rest, processors, busy, step * TICKS).encode(), 0)
        for end in ends:
            for _ in range(frames(mode, step)):
                end.send(frame)
        busy += round(share(mode, step) * TICKS)
        step += 1
        wait = max(0.0, start + step * STEP - time.monotonic())
        if select.select([sys.stdin], [], [], wait)[0]:
            return


if __name__ == "__main__":
    main()
