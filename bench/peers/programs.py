# SPDX-License-Identifier: MIT
"""What is measured: each program's configuration and command. The same readings at the same
interval, but for the two rows whose titles say otherwise."""
import pathlib
import re

from laptop import LINK

I3STATUS_SHIPPED = "/etc/i3status.conf"

VANTORA = """{"schemaVersion":1,"intervalSeconds":1,"modules":[
{"id":"00000000-0000-4000-8000-000000000001","enabled":true,"top":"batteryPercent","bottom":"batteryTime","widthMode":"fixed","width":34,"fontTop":9,"fontBottom":9,"alignment":"center"},
{"id":"00000000-0000-4000-8000-000000000002","enabled":true,"top":"upload","bottom":"download","widthMode":"fixed","width":39,"fontTop":9,"fontBottom":9,"alignment":"center"},
{"id":"00000000-0000-4000-8000-000000000003","enabled":true,"top":"cpuUsage","bottom":"cpuTemperature","widthMode":"fixed","width":34,"fontTop":9,"fontBottom":9,"alignment":"center"}],
"gap":4,"horizontalPadding":3,"verticalPadding":0,"lineGap":0,"paused":false}"""

I3STATUS = f"""general {{ output_format = "none" colors = false interval = 1 }}
order += "battery all"
order += "ethernet {LINK}"
order += "cpu_usage"
order += "cpu_temperature 0"
battery all {{ format = "%percentage %remaining" }}
ethernet {LINK} {{ format_up = "%ip (%speed)" format_down = "E: down" }}
cpu_usage {{ format = "%usage" }}
cpu_temperature 0 {{ format = "%degrees" }}
"""

I3STATUS_CPU = """general { output_format = "none" colors = false interval = 1 }
order += "cpu_usage"
cpu_usage { format = "%usage" }
"""

CONKY = f"""conky.config = {{ update_interval = 1, out_to_x = true, own_window = true,
  double_buffer = true, use_xft = true, font = 'DejaVu Sans:size=9' }}
conky.text = [[${{battery_percent BAT0}} ${{battery_time BAT0}} ${{upspeed {LINK}}} \
${{downspeed {LINK}}} ${{cpu cpu0}}% ${{acpitemp}}]]
"""

POLYBAR = f"""[bar/peer]
width = 100%
height = 24
font-0 = DejaVu Sans:size=9
modules-right = battery network cpu temperature
[module/battery]
type = internal/battery
battery = BAT0
adapter = AC
poll-interval = 1
time-format = %H:%M
format-charging = <label-charging>
label-charging = %percentage%% %time%
[module/network]
type = internal/network
interface = {LINK}
interval = 1
label-connected = %upspeed% %downspeed%
[module/cpu]
type = internal/cpu
interval = 1
[module/temperature]
type = internal/temperature
interval = 1
"""


def interval_of(configuration):
    """The seconds between two lines that an i3status.conf asks for."""
    found = re.search(r"^\s*interval\s*=\s*(\d+)", configuration, re.MULTILINE)
    return int(found.group(1)) if found else 1


def write(folder):
    """All configurations, below `folder`, which is to be XDG_CONFIG_HOME."""
    folder = pathlib.Path(folder)
    (folder / "Vantora").mkdir()
    for name, text in {"Vantora/configuration.json": VANTORA, "i3status": I3STATUS,
                       "i3status-cpu": I3STATUS_CPU, "conky": CONKY, "polybar": POLYBAR}.items():
        (folder / name).write_text(text, encoding="utf-8")


def commands(folder, programs):
    """Each row's title and command. `programs` is the folder with Vantora's."""
    folder, programs = pathlib.Path(folder), pathlib.Path(programs)
    shipped = pathlib.Path(I3STATUS_SHIPPED)
    rows = {
        "Vantora": [programs / "vantora"],
        "vantora-print --follow": [programs / "vantora-print", "--follow"],
        "i3status": ["i3status", "-c", folder / "i3status"],
        "i3status, CPU alone": ["i3status", "-c", folder / "i3status-cpu"],
        "conky": ["conky", "-c", folder / "conky"],
        "polybar": ["polybar", "-c", folder / "polybar", "peer"],
    }
    if shipped.exists():
        seconds = interval_of(shipped.read_text(encoding="utf-8"))
        rows[f"i3status as shipped, {seconds} s"] = ["i3status", "-c", shipped]
    return {title: [str(part) for part in command] for title, command in rows.items()}
