#!/usr/bin/python3 -IS
# SPDX-License-Identifier: MIT
"""A Codex CLI or a Claude Code, by the name that it is started with, that is as bad as a
program can be: at random it answers well, answers badly, floods, hangs, will not be ended,
or dies at any point. SOAK_SEED and the running number of the start decide.

It ends by itself after two minutes whatever happens, so that a run that is aborted leaves
nothing."""
import json
import os
import random
import signal
import sys
import time

FOLDER = os.environ["SOAK_FOLDER"]
NAME = os.path.basename(sys.argv[0])


def record(what):
    with open(f"{FOLDER}/events", "ab", buffering=0) as events:
        events.write(f"{NAME} {what}\n".encode())


def number():
    """How many of this name have been started before."""
    with open(f"{FOLDER}/{NAME}.count", "ab", buffering=0) as count:
        count.write(b".")
        return count.tell()


chance = random.Random(f"{os.environ['SOAK_SEED']} {NAME} {number()}")


def send(text):
    os.write(1, (text if isinstance(text, str) else json.dumps(text)).encode() + b"\n")


def window(minutes):
    # Some renew while the run goes on, some long ago, some never say.
    return {"usedPercent": chance.choice([0, 12.5, 47, 99.9, 100, 104]),
            "windowDurationMins": minutes,
            "resetsAt": int(time.time()) + chance.choice([-60, 5, 40, 7200, 500_000])}


def limits():
    names = chance.sample(["codex", "codex-mini", "team", "review", "x" * 100],
                          chance.choice([1, 1, 1, 2, 4]))
    buckets = {name: {"limitId": name, "limitName": chance.choice([None, name.title()]),
                      "primary": window(300), "secondary": window(10_080)} for name in names}
    return {"accountId": "account", "ordinaryUsageAllowed": chance.random() < 0.9,
            "rateLimits": buckets[names[0]],
            "rateLimitsByLimitId": buckets if chance.random() < 0.8 else None}


def usage():
    def share(ahead):
        at = time.strftime("%Y-%m-%dT%H:%M:%S.25+00:00", time.gmtime(time.time() + ahead))
        return {"utilization": chance.choice([0, 3, 55.5, 100, 101]), "resets_at": at}
    return {"rate_limits_available": chance.random() < 0.9,
            "rate_limits": {"five_hour": share(chance.choice([10, 9000])),
                            "seven_day": share(chance.choice([40, 400_000]))}}


def codex(request):
    """The answers to one line of the agent."""
    method, key = request.get("method"), request.get("id")
    if method == "initialize":
        return [{"id": key, "result": {"userAgent": "soak"}},
                {"method": "configWarning", "params": {"summary": "nothing"}}]
    if method == "account/read":
        account = chance.choice([{"type": "chatgpt", "email": "a@b", "planType": "plus"}] * 8 +
                                [{"type": "apiKey"}, None])
        return [{"id": key, "result": {"account": account, "requiresOpenaiAuth": True}}]
    if method == "account/rateLimits/read":
        if chance.random() < 0.1:
            return [{"id": key, "error": {"code": chance.choice([401, 403, -32601, -32000]),
                                          "message": "no"}}]
        return [{"id": key, "result": limits()}]
    if method == "account/login/start":
        return [{"id": key, "result": {"type": "chatgpt", "loginId": "l",
                                       "authUrl": "https://auth.openai.com/log-in?state=soak"}},
                {"method": "account/login/completed",
                 "params": {"loginId": "l", "success": chance.random() < 0.7, "error": None}}]
    return []


def claude(request):
    key = request.get("request_id")
    if request.get("request", {}).get("subtype") == "initialize":
        return [{"type": "system", "subtype": "init"},
                {"type": "control_response",
                 "response": {"subtype": "success", "request_id": key, "response": {}}}]
    if chance.random() < 0.1:
        return [{"type": "control_response", "response": {
            "subtype": "error", "request_id": key, "error": chance.choice(
                ["Please run /login", "unknown subtype", "busy"])}}]
    return [{"type": "control_response",
             "response": {"subtype": "success", "request_id": key, "response": usage()}}]


def converse(pause=0.0, lines=1_000):
    """Answers well, at most so many lines of it."""
    answers = codex if NAME == "codex" else claude
    for line in sys.stdin:
        for answer in answers(json.loads(line)):
            time.sleep(pause * chance.random())
            if lines == 0:
                return json.dumps(answer)
            lines -= 1
            send(answer)
    return "{}"


def hang():
    while True:
        time.sleep(60)


def answer():
    converse()


def answer_slowly():
    converse(pause=1.5)


def die_in_a_line():
    line = converse(lines=chance.randrange(3))
    os.write(1, line[:chance.randrange(1, 20)].encode())
    os.kill(os.getpid(), chance.choice([signal.SIGKILL, signal.SIGSEGV, signal.SIGTERM]))


def exit_at_once():
    sys.exit(chance.choice([0, 1, 127]))


def complain():
    os.write(2, chance.choice([b"Not logged in. Please run /login\n", b"\xff\x00 oh\n"]))
    sys.exit(1)


def answer_garbage():
    send(chance.choice(["{", "[]", "null", '{"id":77,"result":{}}', "\x00\ufffd", "{" * 5_000,
                        '{"type":"control_response","response":7}', '{"id":1,"result":[]}']))
    hang()


def flood():
    piece = chance.choice([b"x" * 65_536, b"{}\n" * 20_000, b'{"method":"a","params":{}}\n' * 500])
    stream = chance.choice([1, 1, 2])
    for _ in range(200):
        os.write(stream, piece)
    hang()


def refuse_input():
    os.close(0)
    time.sleep(chance.random())
    os.close(1)
    hang()


def will_not_end():
    for ignored in (signal.SIGTERM, signal.SIGHUP, signal.SIGINT, signal.SIGPIPE):
        signal.signal(ignored, signal.SIG_IGN)
    converse(lines=chance.randrange(4))
    hang()


def leave_one_behind():
    """Ends and leaves another of its group, which holds the streams."""
    if os.fork() == 0:
        signal.signal(signal.SIGTERM, chance.choice([signal.SIG_IGN, signal.SIG_DFL]))
        signal.alarm(120)
        hang()
    converse(lines=chance.randrange(3))


WEIGHTS = {answer: 40, answer_slowly: 10, die_in_a_line: 10, exit_at_once: 5, complain: 4,
           answer_garbage: 6, flood: 6, hang: 5, refuse_input: 4, will_not_end: 6,
           leave_one_behind: 4}


def main():
    signal.alarm(120)
    manner = chance.choices(list(WEIGHTS), list(WEIGHTS.values()))[0]
    record(manner.__name__)
    try:
        manner()
    except OSError:
        pass  # the agent has let go


main()
