#!/usr/bin/python3
"""Runs Vantora and its peers one after the other and prints what each costs, as ratios
to Vantora. Usage: measure.py SECONDS VANTORA_FOLDER [NAME...]

CPU is the process's CPU clock (all threads, in nanoseconds), wake-ups are voluntary
context switches of all threads, memory is smaps_rollup after the measured span
(Anonymous: the private pages that the program wrote), and
system calls come from a separate run under strace, which would disturb the others."""
import contextlib
import os
import pathlib
import signal
import subprocess
import sys
import tempfile
import time

WARM_UP = 8
TRACED = 20

I3STATUS = """general { output_format = "none" colors = false interval = 1 }
order += "battery all"
order += "ethernet _first_"
order += "cpu_usage"
order += "cpu_temperature 0"
battery all { format = "%percentage %remaining" }
ethernet _first_ { format_up = "%ip (%speed)" format_down = "E: down" }
cpu_usage { format = "%usage" }
cpu_temperature 0 { format = "%degrees" }
"""
CONKY = """conky.config = { update_interval = 1, out_to_x = true, own_window = true,
  double_buffer = true, use_xft = true, font = 'DejaVu Sans:size=9' }
conky.text = [[${battery_percent} ${upspeed %s} ${downspeed %s} ${cpu cpu0}%%]]
"""
POLYBAR = """[bar/peer]
width = 100%
height = 24
font-0 = DejaVu Sans:size=9
modules-right = battery network cpu temperature
[module/battery]
type = internal/battery
poll-interval = 1
[module/network]
type = internal/network
interface = {interface}
interval = 1
label-connected = %upspeed% %downspeed%
[module/cpu]
type = internal/cpu
interval = 1
[module/temperature]
type = internal/temperature
interval = 1
"""
VANTORA = """{"schemaVersion":1,"intervalSeconds":1,"modules":[
{"id":"00000000-0000-4000-8000-000000000001","enabled":true,"top":"batteryPercent","bottom":"batteryTime","widthMode":"fixed","width":34,"fontTop":9,"fontBottom":9,"alignment":"center"},
{"id":"00000000-0000-4000-8000-000000000002","enabled":true,"top":"upload","bottom":"download","widthMode":"fixed","width":39,"fontTop":9,"fontBottom":9,"alignment":"center"},
{"id":"00000000-0000-4000-8000-000000000003","enabled":true,"top":"cpuUsage","bottom":"cpuTemperature","widthMode":"fixed","width":34,"fontTop":9,"fontBottom":9,"alignment":"center"}],
"gap":4,"horizontalPadding":3,"verticalPadding":0,"lineGap":0,"paused":false}"""


def default_interface():
    for line in pathlib.Path("/proc/net/route").read_text().splitlines()[1:]:
        name, destination = line.split()[:2]
        if destination == "00000000":
            return name
    return "eth0"


def threads(pid):
    return list(pathlib.Path(f"/proc/{pid}/task").iterdir())


def cpu_seconds(pid):
    # clock_getcpuclockid(3): the clock of another process, CPUCLOCK_SCHED.
    return time.clock_gettime((~pid << 3) | 2)


def switches(pid):
    total = 0
    for thread in threads(pid):
        for line in (thread / "status").read_text().splitlines():
            if line.startswith("voluntary_ctxt_switches"):
                total += int(line.split()[1])
    return total


def memory(pid):
    values = {}
    for line in pathlib.Path(f"/proc/{pid}/smaps_rollup").read_text().splitlines()[1:]:
        key, value = line.split(":")
        values[key] = int(value.split()[0]) / 1024
    return values["Rss"], values["Pss"], values["Anonymous"]


def system_calls(pid):
    with tempfile.NamedTemporaryFile("r") as summary:
        tracer = subprocess.Popen(["strace", "-f", "-c", "-o", summary.name, "-p", str(pid)],
                                  stderr=subprocess.DEVNULL)
        time.sleep(TRACED)
        tracer.send_signal(signal.SIGINT)
        tracer.wait()
        for line in summary.read().splitlines():
            if line.endswith("total"):
                return int(line.split()[3 if len(line.split()) > 3 else 2]) / TRACED
    return float("nan")


def measure(pid, seconds):
    time.sleep(WARM_UP)
    cpu, woken, start = cpu_seconds(pid), switches(pid), time.monotonic()
    time.sleep(seconds)
    minutes = (time.monotonic() - start) / 60
    rss, pss, anonymous = memory(pid)
    return {"CPU ms/min": (cpu_seconds(pid) - cpu) * 1000 / minutes,
            "switches/min": (switches(pid) - woken) / minutes,
            "RSS MB": rss, "PSS MB": pss, "Anonymous MB": anonymous,
            "calls/s": system_calls(pid)}


@contextlib.contextmanager
def running(command, **options):
    process = subprocess.Popen(command, **{"stdout": subprocess.DEVNULL,
                                           "stderr": subprocess.DEVNULL, **options})
    try:
        yield process
    finally:
        process.terminate()
        try:
            process.wait(5)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


@contextlib.contextmanager
def session(folder):
    """A display, a session bus and a panel of this run alone."""
    reader, writer = os.pipe()
    with running(["Xvfb", "-displayfd", str(writer), "-screen", "0", "1280x720x24",
                  "-nolisten", "tcp"], pass_fds=[writer]):
        display = ":" + os.read(reader, 16).decode().strip()
        with running(["dbus-daemon", "--session", "--nofork", "--print-address=1"],
                     stdout=subprocess.PIPE) as bus:
            address = bus.stdout.readline().decode().strip()
            environment = {**os.environ, "DISPLAY": display, "DBUS_SESSION_BUS_ADDRESS": address,
                           "XDG_CONFIG_HOME": str(folder), "LC_ALL": "C.UTF-8"}
            here = pathlib.Path(__file__).parent
            with running(["/usr/bin/python3", str(here / "panel.py")], env=environment,
                         stdin=subprocess.PIPE):
                time.sleep(1)
                yield environment


def main():
    seconds, programs = int(sys.argv[1]), pathlib.Path(sys.argv[2])
    wanted = sys.argv[3:]
    interface = default_interface()
    results = {}
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "Vantora").mkdir()
        (folder / "Vantora/configuration.json").write_text(VANTORA)
        (folder / "i3status").write_text(I3STATUS)
        (folder / "conky").write_text(CONKY % (interface, interface))
        (folder / "polybar").write_text(POLYBAR.replace("{interface}", interface))
        commands = {
            "Vantora": [programs / "vantora"],
            "vantora-print --follow": [programs / "vantora-print", "--follow"],
            "i3status": ["i3status", "-c", folder / "i3status"],
            "conky": ["conky", "-c", folder / "conky"],
            "polybar": ["polybar", "-c", folder / "polybar", "peer"],
        }
        with session(folder) as environment:
            for title, command in commands.items():
                if wanted and title not in wanted and title != "Vantora":
                    continue
                # A pipe that is read, as a bar reads it.
                with running(list(map(str, command)), env=environment,
                             stdout=subprocess.PIPE) as process:
                    with running(["cat"], stdin=process.stdout):
                        results[title] = measure(process.pid, seconds)
                    if process.poll() is not None:
                        sys.exit(f"{title} ended with status {process.returncode}")
    columns = list(next(iter(results.values())))
    print(f"{'program':24}" + "".join(f"{column:>24}" for column in columns))
    base = results["Vantora"]
    for title, row in results.items():
        cells = "".join(f"{row[c]:>14.1f} ({row[c] / base[c]:6.2f}x)" for c in columns)
        print(f"{title:24}{cells}")
    print(f"{seconds} s each after {WARM_UP} s of warm-up, at 1 s; calls over {TRACED} s traced; "
          f"{os.uname().machine}, Linux {os.uname().release}, {os.cpu_count()} cores, "
          f"{time.strftime('%Y-%m-%d')}")


main()
