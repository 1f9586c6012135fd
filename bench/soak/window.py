#!/usr/bin/python3 -IS
# SPDX-License-Identifier: MIT
"""In the place of vantora-settings: speaks the settings conversation
(docs/settings-protocol.md) and edits the configuration once a second. After some time it
closes as a user closes it, or dies, hangs, floods or talks nonsense. While there is a file
"rest" in SOAK_FOLDER it puts the whole configuration in force and closes."""
import json
import os
import random
import select
import signal
import sys
import time

FOLDER = os.environ["SOAK_FOLDER"]
HOME = os.environ["HOME"]
PAIRS = [("batteryPercent", "batteryTime"), ("batteryTemperature", "cpuTemperature"),
         ("upload", "download"), ("cpuUsage", "adapterWatts"), ("fan1Percent", "fan1RPM"),
         ("fan2Percent", "fan2RPM"), ("inputWatts", "batteryChargeWatts"),
         ("codexWeeklyPercent", "codexWeeklyReset"),
         ("claudeWeeklyPercent", "claudeSessionPercent")]
METRICS = [metric for pair in PAIRS for metric in pair]


def record(what):
    with open(f"{FOLDER}/events", "ab", buffering=0) as events:
        events.write(f"window {what}\n".encode())


def number():
    with open(f"{FOLDER}/window.count", "ab", buffering=0) as count:
        count.write(b".")
        return count.tell()


chance = random.Random(f"{os.environ['SOAK_SEED']} window {number()}")


def module(index, top, bottom):
    return {"id": f"00000000-0000-4000-8000-{index:012d}", "enabled": True, "top": top,
            "bottom": bottom, "widthMode": "automatic", "width": 34, "fontTop": 9,
            "fontBottom": 9, "alignment": "center", "hideInactiveFans": False}


def whole():
    """Everything shown, in as many modules as there may be."""
    modules = [module(index, *PAIRS[index % len(PAIRS)]) for index in range(24)]
    return {"schemaVersion": 1, "intervalSeconds": 1, "modules": modules, "gap": 4,
            "horizontalPadding": 3, "verticalPadding": 0, "lineGap": 0, "paused": False,
            "codexSettings": {"enabled": True, "intervalMinutes": 1, "showUsed": False,
                              "oneDecimal": False, "showResetDate": False},
            "claudeSettings": {"enabled": True, "intervalMinutes": 1, "showUsed": False,
                               "oneDecimal": False}}


def half(low, high):
    return chance.randint(2 * low, 2 * high) / 2


def change_module(configuration):
    if not configuration["modules"]:
        return
    chosen = chance.choice(configuration["modules"])
    chosen.update(chance.choice([
        {"fontTop": half(8, 13)}, {"fontBottom": half(8, 13)}, {"width": half(16, 160)},
        {"widthMode": chance.choice(["fixed", "automatic"])}, {"gapAfter": half(0, 24)},
        {"alignment": chance.choice(["left", "center", "right"])},
        {"top": chance.choice(METRICS)}, {"bottom": chance.choice(METRICS + ["none"])},
        {"enabled": chance.random() < 0.7}, {"hideInactiveFans": chance.random() < 0.5}]))


def change_spacing(configuration):
    configuration.update(chance.choice([
        {"gap": half(0, 24)}, {"horizontalPadding": half(0, 16)},
        {"verticalPadding": half(0, 10)}, {"lineGap": half(0, 8)}]))


def change_order(configuration):
    chance.shuffle(configuration["modules"])


def change_number(configuration):
    modules = configuration["modules"]
    if len(modules) > 12 and chance.random() < 0.5:
        del modules[chance.randrange(len(modules))]
    elif len(modules) < 24:
        modules.insert(0, module(chance.randrange(1_000, 10**6), *chance.choice(PAIRS)))


def change_quota(configuration):
    settings = configuration[chance.choice(["codexSettings", "claudeSettings"])]
    settings.update(chance.choice([
        {"intervalMinutes": chance.choice([1, 3])}, {"showUsed": chance.random() < 0.5},
        {"oneDecimal": chance.random() < 0.5}]))
    configuration["codexSettings"].update(chance.choice([
        {"showResetDate": chance.random() < 0.3}, {"selectedLimitID": "team"},
        {"selectedLimitID": None}]))


def ask_anew(configuration):
    """A quota that is switched off ends its child; switched on, it asks at once."""
    for key in ("codexSettings", "claudeSettings"):
        settings = configuration[key]
        settings["enabled"] = not settings["enabled"] or chance.random() < 0.4


def change_source(configuration):
    configuration.update(chance.choice([
        {"networkInterface": None}, {"networkInterface": chance.choice(["lo", "soak0", "no"])},
        {"intervalSeconds": 1}, {"intervalSeconds": 2}]))


def pause(configuration):
    configuration["paused"] = True


def go_out_of_bounds(configuration):
    configuration.update(chance.choice([{"gap": 1_000}, {"intervalSeconds": 7}, {"modules": []}]))


def show_everything(configuration):
    configuration.clear()
    configuration.update(whole())


EDITS = {change_module: 22, change_spacing: 8, change_order: 6, change_number: 8,
         change_quota: 6, ask_anew: 30, change_source: 6, pause: 2, go_out_of_bounds: 2,
         show_everything: 20}
REQUESTS = [{"type": "refreshCodex"}, {"type": "connectCodex"}, {"type": "refreshClaude"},
            {"type": "scrolled"}, {"type": "startAtLogin", "enabled": True},
            {"type": "startAtLogin", "enabled": False}, {"type": "restoreDefaults"},
            {"type": "exportJSON", "path": FOLDER + "/exported.json"},
            {"type": "exportJSON", "path": FOLDER + "/missing/exported.json"},
            {"type": "importJSON", "path": FOLDER + "/exported.json"},
            {"type": "importJSON", "path": "/dev/null"},
            {"type": "selectCodexExecutable", "path": HOME + "/.local/bin/codex"},
            {"type": "selectCodexExecutable", "path": "/usr/bin/env"},
            {"type": "ready", "protocol": 1, "scale": 2.5},
            {"type": "ready", "protocol": 1, "scale": 1}]


class Window:
    def __init__(self):
        self.buffer = b""
        self.configuration = whole()
        self.revision = 0
        self.in_force = 0
        self.is_deaf = False

    def send(self, message):
        os.write(1, json.dumps(message).encode() + b"\n")

    def edit(self, change):
        before = json.dumps(self.configuration)
        # What was for a moment only.
        self.configuration["paused"] = False
        if self.configuration["gap"] > 24 or self.configuration["intervalSeconds"] > 2 or \
                not self.configuration["modules"]:
            show_everything(self.configuration)
        change(self.configuration)
        while json.dumps(self.configuration) == before:
            change_spacing(self.configuration)
        self.revision += 1
        message = {"type": "configuration", "revision": self.revision,
                   "configuration": self.configuration}
        if change is change_number and self.configuration["modules"]:
            message["pendingScrollID"] = self.configuration["modules"][0]["id"]
        record("edit")
        self.send(message)

    def take(self, line):
        message = json.loads(line)
        if message["type"] != "state":
            return
        if "configuration" in message and message["revision"] >= self.revision:
            self.configuration = message["configuration"]
            # Only what was chosen otherwise is in the document.
            for key, value in whole().items():
                self.configuration.setdefault(key, value)
        if self.in_force < message["revision"] == self.revision:
            record("edit in force")
        self.in_force = message["revision"]
        if not self.is_deaf:
            self.send({"type": "seen", "sequence": message["sequence"]})

    def turn(self, until):
        """Reads what the agent says until then. False when it closed the input."""
        while (left := until - time.monotonic()) > 0:
            if not select.select([0], [], [], left)[0]:
                break
            received = os.read(0, 65_536)
            if not received:
                return False
            self.buffer += received
            *lines, self.buffer = self.buffer.split(b"\n")
            for line in lines:
                self.take(line)
        return True


def end_badly(window, how):
    if how == "killed":
        os.kill(os.getpid(), signal.SIGKILL)
    elif how == "failed":
        sys.exit(3)
    elif how == "nonsense":
        os.write(1, b'{"type":"hello"}\n')
    elif how == "half":
        os.write(1, b'{"type":"configuration","revision":')
        sys.exit(0)
    elif how == "flood":
        os.write(1, b'{"type":"scrolled"}\n' * 3_000)
    elif how == "long":
        os.write(1, b"x" * 300_000)
    elif how == "hanging":
        window.is_deaf = True
        signal.signal(signal.SIGTERM, signal.SIG_IGN)
    window.turn(time.monotonic() + 30)
    signal.pause()  # until it is ended


def main():
    signal.alarm(400)
    if chance.random() < 0.05:
        record("unready")
        sys.exit(chance.randrange(2))
    window = Window()
    window.send({"type": "ready", "protocol": 1, "scale": chance.choice([1, 1.25, 2, 3])})
    begun = time.monotonic()
    life = chance.uniform(4, 60)
    if not window.turn(begun + 0.3):
        return
    window.edit(show_everything)
    second = 0
    while True:
        second += 1
        if not window.turn(begun + 0.3 + second):
            record("closed_by_agent")
            return
        if os.path.exists(FOLDER + "/rest"):
            window.edit(show_everything)
            window.turn(time.monotonic() + 0.5)
            record("rest")
            return
        change = chance.choices(list(EDITS), list(EDITS.values()))[0]
        if chance.random() < 0.25:
            request = chance.choice(REQUESTS)
            window.send(request)
            if request["type"] in ("restoreDefaults", "importJSON"):
                change = show_everything
        window.edit(change)
        if second > life:
            break
    if chance.random() < 0.4:
        record("closed")
        return
    how = chance.choice(["killed", "failed", "nonsense", "half", "flood", "long"])
    if chance.random() < 0.05:
        how = "hanging"  # until the agent's timeout, 20 s without a change
    record(how)
    end_badly(window, how)


try:
    main()
except OSError:
    pass  # the agent has let go
