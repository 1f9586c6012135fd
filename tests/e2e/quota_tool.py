#!/usr/bin/python3 -S
# SPDX-License-Identifier: MIT
"""quota_tool.py claude|codex patient|stubborn NOTES

A command-line assistant for tests: answers what the agent asks once the file NOTES/answer
exists (patient), or neither answers nor ends when it is asked to or when its input
ends, and starts a child that is no better (stubborn). Notes its number, its child's and its
environment. It ends by itself after a minute, so that a failed test leaves nothing behind.
"""

import json
import os
import signal
import sys
import time

ANSWER = {"rate_limits_available": True, "rate_limits": {
    "five_hour": {"utilization": 21, "resets_at": None},
    "seven_day": {"utilization": 43, "resets_at": None}}}
LIMITS = {"rateLimits": {"limitId": "codex", "primary": {
    "usedPercent": 37, "windowDurationMins": 10080, "resetsAt": int(time.time()) + 300000}}}


def note(name, line):
    with open(os.path.join(NOTES, name), "a", encoding="utf-8") as notes:
        notes.write(f"{line}\n")


def wait_for_permission():
    while not os.path.exists(os.path.join(NOTES, "answer")):
        time.sleep(0.02)


def say(message):
    sys.stdout.write(json.dumps(message) + "\n")
    sys.stdout.flush()


def answer_claude(request):
    if request.get("request", {}).get("subtype") == "get_usage":
        wait_for_permission()
        say({"type": "control_response", "response": {
            "subtype": "success", "request_id": request["request_id"], "response": ANSWER}})


def answer_codex(request):
    if request.get("method") == "account/rateLimits/read":
        wait_for_permission()
        say({"id": request["id"], "result": LIMITS})
    elif request.get("method") == "account/read":
        say({"id": request["id"], "result": {"account": {"type": "chatgpt", "email": "a@b.c"}}})
    elif "id" in request:
        say({"id": request["id"], "result": {}})


def be_stubborn():
    signal.signal(signal.SIGTERM, signal.SIG_IGN)
    signal.signal(signal.SIGHUP, signal.SIG_IGN)
    if os.fork() == 0:
        signal.alarm(60)
        note("grandchildren", os.getpid())
    else:
        note("started", os.getpid())
    while True:
        signal.pause()


KIND, MANNER, NOTES = sys.argv[1:4]
signal.alarm(60)
with open(os.path.join(NOTES, "environment"), "w", encoding="utf-8") as environment:
    json.dump(dict(os.environ), environment)
if MANNER == "stubborn":
    be_stubborn()
note("started", os.getpid())
for text in sys.stdin:
    {"claude": answer_claude, "codex": answer_codex}[KIND](json.loads(text))
