#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""take_screenshots.py PROGRAM FOLDER: pictures of every tab of the settings window, and of what
shows only at times (PROGRAM's scenes), on desktops that want light, dark or high contrast, at
once and twice the size and in the smallest window in which everything must be readable:

    settings-SCENE-SCHEME.png  settings-SCENE-SCHEME@2x.png  settings-SCENE-SCHEME-640x520.png

Where the window is of that size by itself, the last one would be the first again and is left out.
PROGRAM is vantora_settings_screenshots. The display, the bus and the desktop's portal are this
script's own. Packages: xvfb, dbus-daemon, python3-dbus, python3-gi, imagemagick.
"""
import os
import pathlib
import subprocess
import sys
import tempfile

SUPPORT = pathlib.Path(__file__).resolve().parents[2] / "support"
sys.path.insert(0, str(SUPPORT))
from session.servers import start_bus, start_display

# As the portal says it: color-scheme and contrast.
SCHEMES = {"light": (2, 0), "dark": (1, 0), "contrast": (0, 1)}
# What is behind the name: scale and size of the window (its own where there is none).
VARIANTS = {"": (1, ()), "@2x": (2, ()), "-640x520": (1, ("640", "520"))}


def shrink(picture):
    """A window has few colours: a palette of them is enough, and a third of the bytes."""
    subprocess.run(["convert", picture, "+dither", "-colors", "256", "-strip", "-define",
                    "png:compression-level=9", "-define", "png:exclude-chunks=date,time",
                    "PNG8:" + str(picture)], check=True)


def main():
    program, folder = os.path.abspath(sys.argv[1]), pathlib.Path(sys.argv[2]).resolve()
    children = []

    def start(command, **options):
        children.append(subprocess.Popen(command, **options))
        return children[-1]

    with tempfile.TemporaryDirectory() as home:
        environment = {"PATH": os.environ["PATH"], "HOME": home, "LANG": "C.UTF-8",
                       "XDG_RUNTIME_DIR": home, "QT_QPA_PLATFORM": "xcb", "QT_FONT_DPI": "96"}
        try:
            _, environment["DISPLAY"] = start_display(start, "2400x2000")
            for scheme, (color, contrast) in SCHEMES.items():
                _, address = start_bus(start, f"{home}/bus-{scheme}")
                environment["DBUS_SESSION_BUS_ADDRESS"] = address
                portal = start([sys.executable, SUPPORT / "session/portal.py", str(color),
                                str(contrast)], env=environment, stdout=subprocess.PIPE)
                if portal.stdout.readline() != b"ready\n":
                    raise SystemExit("take_screenshots: the portal did not start")
                for variant, (scale, size) in VARIANTS.items():
                    subprocess.run([program, folder, scheme + variant, *size], check=True,
                                   env=dict(environment, QT_SCALE_FACTOR=str(scale)))
        finally:
            for child in reversed(children):
                child.kill()
                child.wait()
    for picture in sorted(folder.glob("settings-*.png")):
        usual = folder / picture.name.replace("-640x520", "")
        if usual != picture and usual.read_bytes() == picture.read_bytes():
            picture.unlink()
    for picture in sorted(folder.glob("settings-*.png")):
        shrink(picture)


main()
